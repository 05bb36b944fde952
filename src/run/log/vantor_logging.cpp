#include "run/log/vantor_logging.h"

#include "platform/files/append_file.h"
#include "platform/standard_output.h"
#include "platform/text/encoding.h"

#include <stdexcept>

namespace vantor {
namespace {

VantorLogging* g_logger = nullptr;

} // namespace

VantorLogging::VantorLogging()
{
    if (!g_logger) {
        g_logger = this;
    }
}

VantorLogging::~VantorLogging()
{
    if (g_logger == this) {
        g_logger = nullptr;
    }
}

void VantorLogging::Configure(const RunConfig& config)
{
    if (m_configured) {
        throw std::logic_error("VantorLogging::Configure: Already configured.");
    }
    m_echo = config.verbose;
    if (!config.logFile.empty()) {
        m_file = std::make_unique<AppendFile>(ToWide(config.logFile));
        m_fileOpen = m_file->IsOpen();
    }
    if (m_fileOpen) {
        m_file->Append(m_memory);
    }
    if (m_echo) {
        WriteToStandard(STD_OUTPUT_HANDLE, m_memory);
    }
    m_memory = {};
    m_configured = true;
}

VantorLogging& VantorLogging::GetLogger()
{
    if (!g_logger) {
        throw std::logic_error("VantorLogging::GetLogger: g_logger is null.");
    }
    return *g_logger;
}

void VantorLogging::Write(std::string_view line)
{
    if (!m_configured) {
        m_memory += line;
    } else if (m_fileOpen) {
        m_file->Append(line);
    }
    if (m_echo) {
        WriteToStandard(STD_OUTPUT_HANDLE, line);
    }
}

} // namespace vantor

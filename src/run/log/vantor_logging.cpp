#include "run/log/vantor_logging.h"

#include "platform/append_file.h"
#include "platform/text.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <stdexcept>

namespace vantor {
namespace {

VantorLogging* g_logger = nullptr;

void WriteToStandardOutput(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

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
        ::_setmode(::_fileno(stdout), _O_BINARY); // lines carry their own line ends
        WriteToStandardOutput(m_memory);
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
        WriteToStandardOutput(line);
    }
}

} // namespace vantor

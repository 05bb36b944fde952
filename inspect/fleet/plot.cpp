#include "inspect/fleet/plot.h"

#include "inspect/fleet/number_text.h"
#include "inspect/html_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>

namespace vantor::fleet {
namespace {

using inspect::HtmlText;

constexpr double kWidth = 420;
constexpr double kHeight = 170;
constexpr double kLeft = 52;
constexpr double kTop = 8;
constexpr double kBottom = 146;
constexpr std::size_t kMaxLabels = 8;

std::string At(double position)
{
    return Decimal(position, 1);
}

/// The least of 1, 2, 2.5 and 5 times a power of ten that is not below the value.
double RoundedUp(double value)
{
    if (value <= 0) {
        return 1;
    }
    const double power = std::pow(10, std::floor(std::log10(value)));
    for (const double factor : {1.0, 2.0, 2.5, 5.0}) {
        if (value <= factor * power) {
            return factor * power;
        }
    }
    return 10 * power;
}

std::string Element(const char* name, const char* kind, const std::string& attributes, const std::string& hint)
{
    return std::string("<") + name + " class=\"" + kind + "\" " + attributes + "><title>" + HtmlText(hint) +
           "</title></" + name + '>';
}

/// Axes, and where columns and values lie between them.
class Frame {
public:
    Frame(std::size_t columns, double highest) : m_columns(columns), m_highest(RoundedUp(highest)) {}

    double X(std::size_t column) const
    {
        return kLeft + (kWidth - kLeft) * (static_cast<double>(column) + 0.5) / static_cast<double>(m_columns);
    }
    double Y(double value) const { return kBottom - (kBottom - kTop) * std::min(value / m_highest, 1.0); }
    double ColumnWidth() const { return (kWidth - kLeft) / static_cast<double>(m_columns); }

    std::string Begin(const std::vector<std::string>& labels, const std::vector<std::string>& scale) const
    {
        std::ostringstream svg;
        svg << "<svg viewBox=\"0 0 " << kWidth << ' ' << kHeight << "\" role=\"img\">";
        for (std::size_t step = 0; step < scale.size(); ++step) {
            const double y = Y(m_highest * static_cast<double>(step) / static_cast<double>(scale.size() - 1));
            svg << "<line class=\"grid\" x1=\"" << kLeft << "\" x2=\"" << kWidth << "\" y1=\"" << At(y) << "\" y2=\""
                << At(y) << "\"/><text x=\"" << kLeft - 6 << "\" y=\"" << At(y + 4) << "\" text-anchor=\"end\">"
                << HtmlText(scale[step]) << "</text>";
        }
        const std::size_t every = (labels.size() + kMaxLabels - 1) / kMaxLabels;
        for (std::size_t column = 0; column < labels.size(); column += every) {
            svg << "<text x=\"" << At(X(column)) << "\" y=\"" << kHeight - 6 << "\" text-anchor=\"middle\">"
                << HtmlText(labels[column]) << "</text>";
        }
        return svg.str();
    }

    double Highest() const { return m_highest; }

private:
    std::size_t m_columns;
    double m_highest;
};

template <typename Item>
std::vector<std::string> Labels(const std::vector<Item>& items)
{
    std::vector<std::string> labels;
    std::ranges::transform(items, std::back_inserter(labels), &Item::label);
    return labels;
}

} // namespace

std::string SharePlot(const std::vector<ShareBar>& bars)
{
    double highest = 0.001;
    for (const ShareBar& bar : bars) {
        highest = std::max(highest, bar.high);
    }
    const Frame frame(bars.size(), highest);
    std::string svg = frame.Begin(Labels(bars), {"0", Percent(frame.Highest() / 2), Percent(frame.Highest())});
    const double width = std::min(frame.ColumnWidth() * 0.7, 40.0);
    for (std::size_t column = 0; column < bars.size(); ++column) {
        const ShareBar& bar = bars[column];
        const double x = frame.X(column);
        const double y = frame.Y(bar.share);
        svg += Element("rect", bar.isMarked ? "bar marked" : "bar",
                       "x=\"" + At(x - width / 2) + "\" y=\"" + At(y) + "\" width=\"" + At(width) + "\" height=\"" +
                           At(kBottom - y) + '"',
                       bar.hint);
        svg += Element("line", "interval",
                       "x1=\"" + At(x) + "\" x2=\"" + At(x) + "\" y1=\"" + At(frame.Y(bar.low)) + "\" y2=\"" +
                           At(frame.Y(bar.high)) + '"',
                       bar.hint);
    }
    return svg + "</svg>";
}

std::string ChangePlot(const std::vector<Change>& changes, const std::string& unit)
{
    double highest = 1;
    for (const Change& change : changes) {
        highest = std::max({highest, change.before, change.after});
    }
    const Frame frame(changes.size(), highest);
    std::string svg = frame.Begin(
        Labels(changes), {"0", Decimal(frame.Highest() / 2, 0) + ' ' + unit, Decimal(frame.Highest(), 0) + ' ' + unit});
    for (std::size_t column = 0; column < changes.size(); ++column) {
        const Change& change = changes[column];
        const double x = frame.X(column);
        const double step = std::min(frame.ColumnWidth() * 0.2, 12.0);
        const std::string y1 = At(frame.Y(change.before));
        const std::string y2 = At(frame.Y(change.after));
        const std::string start = "x1=\"" + At(x - step) + "\" y1=\"" + y1 + '"';
        const std::string end = " x2=\"" + At(x + step) + "\" y2=\"" + y2 + '"';
        svg += Element("line", "change", start + end, change.hint);
        svg += Element("circle", "before", "cx=\"" + At(x - step) + "\" cy=\"" + y1 + "\" r=\"4\"", change.hint);
        svg += Element("circle", "after", "cx=\"" + At(x + step) + "\" cy=\"" + y2 + "\" r=\"4\"", change.hint);
    }
    return svg + "</svg>";
}

std::string SharesLine(const std::vector<double>& shares, const std::string& hint)
{
    constexpr double kLineWidth = 160;
    constexpr double kLineHeight = 24;
    std::string points;
    for (std::size_t index = 0; index < shares.size(); ++index) {
        const double x = shares.size() == 1
                             ? kLineWidth / 2
                             : kLineWidth * static_cast<double>(index) / static_cast<double>(shares.size() - 1);
        points += At(x) + ',' + At(kLineHeight - 2 - (kLineHeight - 4) * shares[index]) + ' ';
    }
    return "<svg class=\"small\" viewBox=\"0 0 " + At(kLineWidth) + ' ' + At(kLineHeight) + "\" role=\"img\">" +
           Element("polyline", "line", "points=\"" + points + '"', hint) + "</svg>";
}

} // namespace vantor::fleet

// Plots as inline SVG. Colours and fonts come from the page's style.
#pragma once

#include <string>
#include <vector>

namespace vantor::fleet {

/// A share with its interval, all from 0 to 1.
struct ShareBar {
    std::string label;
    double share = 0;
    double low = 0;
    double high = 0;
    bool isMarked = false;
    std::string hint; ///< shown where the mouse points
};

/// A bar a share, the interval drawn over it. The scale goes from 0 to the highest interval.
std::string SharePlot(const std::vector<ShareBar>& bars);

/// A value before and after.
struct Change {
    std::string label;
    double before = 0;
    double after = 0;
    std::string hint;
};

/// Two points a change, joined by a line. The scale goes from 0 to the highest value, in `unit`.
std::string ChangePlot(const std::vector<Change>& changes, const std::string& unit);

/// A small line without axes, from 0 at the bottom to 1 at the top.
std::string SharesLine(const std::vector<double>& shares, const std::string& hint);

} // namespace vantor::fleet

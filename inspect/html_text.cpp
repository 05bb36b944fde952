#include "inspect/html_text.h"

#include "inspect/printable_text.h"

namespace vantor::inspect {

std::string HtmlText(std::string_view text)
{
    std::string html;
    for (const char character : PrintableText(text)) {
        switch (character) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += character;
        }
    }
    return html;
}

} // namespace vantor::inspect

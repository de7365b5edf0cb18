#include "tools/mlktree/XmlText.h"

#include "tools/mlktree/ShownLine.h"

namespace mlk::tree {

std::string xmlText(std::string_view text) {
    std::string out;
    for (const char sign : shownText(text)) {
        switch (sign) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&apos;";
                break;
            default:
                out += sign;
        }
    }
    return out;
}

}  // namespace mlk::tree

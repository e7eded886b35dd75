#include "tools/render/TextLayout.h"

#include <sstream>

namespace ambrel::render
{

std::string wrapBeside(const std::string& head, const std::string& text, std::size_t column)
{
    constexpr std::size_t lineLength = 80;

    std::string page = head;
    std::string line = head;

    if (head.size() + 2 > column)
    {
        page += '\n';
        line.clear();
    }
    page += std::string(column - line.size(), ' ');
    line.resize(column, ' ');

    std::istringstream words(text);

    for (std::string word; words >> word;)
    {
        if (line.size() + 1 + word.size() > lineLength)
        {
            page += '\n' + std::string(column, ' ');
            line.assign(column, ' ');
        }
        const std::string gap = line.size() > column ? " " : "";
        page += gap + word;
        line += gap + word;
    }
    return page + '\n';
}

} // namespace ambrel::render

#include "tests/formats/format_page.h"

#include <gtest/gtest.h>

#include <string_view>

#include "tests/support/temp_folder.h"

namespace tessel::test {
namespace {

std::string_view take_line(std::string_view& text) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

std::string cell_text(std::string_view cell) {
    while (cell.starts_with(' '))
        cell.remove_prefix(1);
    while (cell.ends_with(' '))
        cell.remove_suffix(1);
    if (cell.size() > 1 && cell.starts_with('`') && cell.find('`', 1) == cell.size() - 1) {
        cell = cell.substr(1, cell.size() - 2);
    }
    return std::string(cell);
}

// A bar inside a cell is written as the entity that every renderer knows.
std::vector<std::string> cells_of(std::string_view line) {
    const std::string_view bar = "&#124;";
    std::vector<std::string> cells;
    std::string cell;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '|') {
            cells.push_back(cell_text(cell));
            cell.clear();
        } else if (line.substr(i).starts_with(bar)) {
            cell += '|';
            i += bar.size() - 1;
        } else {
            cell += line[i];
        }
    }
    return cells;
}

// What follows the mark; fails the test, and is empty, when it is not there.
std::string_view text_behind(std::string_view text, const std::string& mark) {
    const std::size_t found = text.find(mark);
    EXPECT_NE(found, text.npos) << "the page lacks: " << mark;
    return found == text.npos ? "" : text.substr(found + mark.size());
}

}  // namespace

CFormatPage::CFormatPage(const std::string& name)
    : m_strText(read_file(source_path("docs/formats/" + name + ".md"))) {
}

TableRows CFormatPage::Table(const std::string& heading) const {
    TableRows rows;
    std::string_view rest = text_behind(m_strText, "\n## " + heading + '\n');
    while (!rest.empty() && !rest.starts_with('|') && !rest.starts_with("## "))
        take_line(rest);
    while (rest.starts_with('|'))
        rows.push_back(cells_of(take_line(rest)));
    EXPECT_GT(rows.size(), 2U) << "no table under: " << heading;
    rows.erase(rows.begin(), rows.begin() + (rows.size() < 2 ? 0 : 2));
    return rows;
}

std::string CFormatPage::BlockBehind(const std::string& mark) const {
    const std::string_view block = text_behind(text_behind(m_strText, mark), "\n```\n");
    const std::size_t end = block.starts_with("```") ? 0 : block.find("\n```") + 1;
    return std::string(block.substr(0, end));
}

std::string example_path(const std::string& name) {
    return source_path("docs/formats/examples" + (name.empty() ? "" : '/' + name));
}

}  // namespace tessel::test

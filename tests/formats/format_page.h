#pragma once

#include <string>
#include <vector>

namespace tessel::test {

using TableRows = std::vector<std::vector<std::string>>;

/// A page of docs/formats: its tables and its blocks of text, so that tests compare the code with
/// what the page says.
class CFormatPage {
public:
    /// By its file name without ".md".
    explicit CFormatPage(const std::string& name);

    /// The rows of the first table under a heading, without its head. Cells come without code marks
    /// and with entities of bars as bars.
    TableRows Table(const std::string& heading) const;
    /// The text in the fenced block that follows `mark`, with its last line end.
    std::string BlockBehind(const std::string& mark) const;

private:
    std::string m_strText;
};

/// A file of docs/formats/examples.
std::string example_path(const std::string& name = "");

}  // namespace tessel::test

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace tessel::fuzz {

/// The bytes of one input: settings first, as many as a target takes, then the text.
class CBytes {
public:
    explicit CBytes(std::string_view bytes) : m_strRest(bytes) {}

    /// The next byte; 0 when none is left.
    std::uint8_t Byte() {
        if (m_strRest.empty()) return 0;
        const auto byte = static_cast<std::uint8_t>(m_strRest.front());
        m_strRest.remove_prefix(1);
        return byte;
    }
    /// A number below `choices` by the next byte. With 2, 3, 4, 6, 8, 12 or 16 choices the digit
    /// "0" stands for 0, "1" for 1 and so on, which keeps corpora readable.
    std::size_t Choice(std::size_t choices) { return Byte() % choices; }
    bool Flag() { return Choice(2) == 1; }
    double Double() {
        double value = 0.0;
        if (m_strRest.size() < sizeof value) return value;
        std::memcpy(&value, m_strRest.data(), sizeof value);
        m_strRest.remove_prefix(sizeof value);
        return value;
    }
    /// All up to the next delimiter, which is taken, too; all that is left without one.
    std::string_view Until(char delimiter) {
        const std::size_t end = m_strRest.find(delimiter);
        const std::string_view text = m_strRest.substr(0, end);
        m_strRest.remove_prefix(end == std::string_view::npos ? m_strRest.size() : end + 1);
        return text;
    }
    /// All that is left.
    std::string_view Text() const { return m_strRest; }

private:
    std::string_view m_strRest;
};

/// What a target does with one input. Every target defines it.
void run(CBytes input);

/// Thrown in place of the end of the process: an outcome like any other.
struct ENDED_PROCESS {
    int m_nStatus;
};
/// Whether the action would have ended the process.
template <class Action>
bool ends_process(Action action) {
    try {
        action();
    } catch (const ENDED_PROCESS&) {
        return true;
    }
    return false;
}

/// Ends the program, with the text on standard error, when a promise of the library is broken.
void check(bool holds, const char* promise);

/// Equal doubles: the same number or both none.
inline bool same(double a, double b) {
    return a == b || (a != a && b != b);
}

/// Names a file of the program's own folder, which is the working folder, too. Contents stay from
/// run to run until they are replaced.
std::string scratch_path(const std::string& name);
void write_scratch(const std::string& name, std::string_view bytes);
std::string read_scratch(const std::string& name);
/// Breaks the program unless the folder holds nothing but these files, blanks between the names,
/// in byte order.
void check_scratch_files(const std::string& names);

}  // namespace tessel::fuzz

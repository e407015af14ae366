// The condition object itself: construction, the console logger, and the small helpers that every
// other part of the library uses.

#include "tessel/condition/condition.h"

#include <bit>
#include <iostream>

#include "tessel/base/text.h"
#include "tessel/platform/console.h"

namespace tessel {

CCondition::CCondition() : m_cFastaLoader(this) {
    m_cEnzyme.Init("Trypsin KR _ C");
}

CCondition::~CCondition() = default;

void CCondition::Message(const std::string& text, LOG_TYPE type) const {
    if (m_eLogType < type) return;
    const auto write = [&text](const char* mark) {
        std::cout << "[Tessel] " + (mark + text) + '\n' << std::flush;
    };
    switch (type) {
        case LOG_INFO:
            write("");
            break;
        case LOG_DEBUG:
            write("DEBUG: ");
            break;
        case LOG_WARNING:
            set_console_colour(CONSOLE_COLOUR::GREEN);
            write("WARNING: ");
            set_console_colour(CONSOLE_COLOUR::NORMAL);
            break;
        case LOG_ALERT:
            set_console_colour(CONSOLE_COLOUR::RED);
            write("ALERT: ");
            set_console_colour(CONSOLE_COLOUR::NORMAL);
            break;
        case LOG_SILENT:
            break;
    }
}

std::string CCondition::LogType2String(LOG_TYPE type) const {
    switch (type) {
        case LOG_ALERT:
            return "LOG_ALERT";
        case LOG_SILENT:
            return "LOG_SILENT";
        case LOG_WARNING:
            return "LOG_WARNING";
        case LOG_INFO:
            return "LOG_INFO";
        case LOG_DEBUG:
            return "LOG_DEBUG";
    }
    return "";
}

void CCondition::StringSplit(const std::string& text, const char& delimiter,
                             std::vector<std::string>& out) const {
    for_each_field(text, delimiter, [&out](std::string_view field) {
        if (!field.empty()) out.emplace_back(field);
    });
}

double CCondition::_CalcMaxDeviation(const double& mass, bool precursor) const {
    if (precursor) return m_bPrecursorPPM ? mass * m_lfPrecursorTol * 1e-6 : m_lfPrecursorTol;
    return m_bFragmentPPM ? mass * m_lfFragmentTol * 1e-6 : m_lfFragmentTol;
}

std::uint32_t CCondition::_GetBitsNum(std::uint32_t value) const {
    return static_cast<std::uint32_t>(std::popcount(value));
}

}  // namespace tessel

// Findings come in; the text and the JSON document that the user asked for go out.

#include "tools/tessel_check/report.h"

#include <algorithm>
#include <array>

#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/text.h"

namespace tessel::check {
namespace {

constexpr std::size_t kMostAlike = 20;
constexpr std::array kLevels = {LEVEL::NOTE, LEVEL::WARNING, LEVEL::ERROR};

std::string_view level_name(LEVEL level) {
    switch (level) {
        case LEVEL::NOTE:
            return "note";
        case LEVEL::WARNING:
            return "warning";
        case LEVEL::ERROR:
            return "error";
    }
    return "";
}

void append_hex(std::string& text, char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
}

// The length of the UTF-8 character in front; 0 where there is none.
std::size_t character_length(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    const auto follows = [byte](std::size_t i) { return (byte(i) & 0xC0u) == 0x80u; };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return follows(1) ? 2 : 0;
    if (first >= 0xE0 && first < 0xF0) {
        const bool tooShort = first == 0xE0 && byte(1) < 0xA0;
        const bool surrogate = first == 0xED && byte(1) >= 0xA0;
        return follows(1) && follows(2) && !tooShort && !surrogate ? 3 : 0;
    }
    if (first >= 0xF0 && first < 0xF5) {
        const bool tooShort = first == 0xF0 && byte(1) < 0x90;
        const bool tooLarge = first == 0xF4 && byte(1) >= 0x90;
        return follows(1) && follows(2) && follows(3) && !tooShort && !tooLarge ? 4 : 0;
    }
    return 0;
}

// Hands out the text character by character: take(character, whether it can be shown).
template <class Take>
void for_each_character(std::string_view text, Take take) {
    while (!text.empty()) {
        const std::size_t length = character_length(text);
        const bool shown = length > 1 || (length == 1 && is_printable(text.front()));
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        take(character, shown);
        text.remove_prefix(character.size());
    }
}

std::string printable(std::string_view text) {
    std::string shown;
    for_each_character(text, [&shown](std::string_view character, bool canBeShown) {
        if (canBeShown) {
            shown += character;
        } else {
            shown += "\\x";
            append_hex(shown, character.front());
        }
    });
    return shown;
}

std::string quoted(std::string_view text) {
    std::string json = "\"";
    for_each_character(text, [&json](std::string_view character, bool canBeShown) {
        if (!canBeShown) {
            json += "\\u00";
            append_hex(json, character.front());
            return;
        }
        if (character == "\"" || character == "\\") json += '\\';
        json += character;
    });
    return json + '"';
}

std::string as_json(const FINDING& finding) {
    const PLACE& place = finding.m_cPlace;
    std::string json = "{\"level\": " + quoted(level_name(finding.m_eLevel));
    json += ", \"code\": " + quoted(finding.m_strCode);
    json += ", \"file\": " + quoted(place.m_strFile) + ", \"line\": ";
    if (place.m_tLine == 0) {
        json += "null";
    } else {
        append_integer(json, place.m_tLine);
    }
    json += ", \"message\": " + quoted(finding.m_strMessage);
    return json + ", \"advice\": " + quoted(finding.m_strAdvice) + '}';
}

}  // namespace

void CReport::Error(std::string_view code, const PLACE& place, std::string message,
                    std::string advice) {
    Add(LEVEL::ERROR, code, place, std::move(message), std::move(advice));
}

void CReport::Warning(std::string_view code, const PLACE& place, std::string message,
                      std::string advice) {
    Add(LEVEL::WARNING, code, place, std::move(message), std::move(advice));
}

void CReport::Note(std::string_view code, const PLACE& place, std::string message) {
    Add(LEVEL::NOTE, code, place, std::move(message), "");
}

void CReport::Add(LEVEL level, std::string_view code, const PLACE& place, std::string message,
                  std::string advice) {
    const auto kind = m_mapKinds.try_emplace({place.m_strFile, std::string(code)}, KIND{level, 0});
    if (++kind.first->second.m_tNumber > kMostAlike) return;
    m_vFindings.push_back({level, std::string(code), place, std::move(message), std::move(advice)});
}

std::vector<FINDING> CReport::Findings() const {
    std::vector<FINDING> findings = m_vFindings;
    for (const auto& [fileAndCode, kind] : m_mapKinds) {
        if (kind.m_tNumber <= kMostAlike) continue;
        const auto& [file, code] = fileAndCode;
        const PLACE whole{file, 0};
        findings.push_back(
            {kind.m_eLevel, code, whole,
             joined_text("and ", kind.m_tNumber - kMostAlike, " more like the ", code, " above"),
             ""});
    }
    return findings;
}

std::size_t CReport::Number(LEVEL level) const {
    std::size_t number = 0;
    for (const auto& [fileAndCode, kind] : m_mapKinds) {
        if (kind.m_eLevel == level) number += kind.m_tNumber;
    }
    return number;
}

std::string findings_as_text(const CReport& report) {
    std::string text;
    for (const FINDING& finding : report.Findings()) {
        text += level_name(finding.m_eLevel);
        text += ": " + printable(finding.m_cPlace.m_strFile);
        if (finding.m_cPlace.m_tLine > 0) {
            text += ':';
            append_integer(text, finding.m_cPlace.m_tLine);
        }
        text += ": " + printable(finding.m_strMessage);
        if (!finding.m_strAdvice.empty()) text += " -> " + printable(finding.m_strAdvice);
        text += " [" + finding.m_strCode + "]\n";
    }
    return text;
}

std::string findings_as_json(const CReport& report, const std::string& parameterFile) {
    std::string json = "{\"parameter_file\": " + quoted(parameterFile) + ",\n \"counts\": {";
    for (const LEVEL level : kLevels) {
        if (level != kLevels.front()) json += ", ";
        json += quoted(level_name(level)) + ": ";
        append_integer(json, report.Number(level));
    }
    json += "},\n \"findings\": [";
    std::string_view separator = "\n  ";
    for (const FINDING& finding : report.Findings()) {
        json += separator;
        json += as_json(finding);
        separator = ",\n  ";
    }
    return json + "\n ]}\n";
}

}  // namespace tessel::check

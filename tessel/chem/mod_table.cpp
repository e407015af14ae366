// The modification table: the file that m_strModPath names comes in, m_vMods is filled. A
// definition goes back to a line of the same file by GetLine().

#include <array>

#include "tessel/base/end_process.h"
#include "tessel/base/line_reader.h"
#include "tessel/base/mass_order.h"
#include "tessel/base/message_text.h"
#include "tessel/base/number.h"
#include "tessel/base/word_reader.h"
#include "tessel/chem/mod.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

// Indexed by MOD_TYPE.
constexpr std::array<std::string_view, 5> kPositions = {"NORMAL", "PEP_C", "PEP_N", "PRO_C",
                                                        "PRO_N"};

MOD_TYPE position_type(std::string_view word) {
    for (std::size_t i = 0; i < kPositions.size(); ++i) {
        if (word == kPositions[i]) return static_cast<MOD_TYPE>(i);
    }
    return NORMAL;
}

std::string_view position_word(MOD_TYPE type) {
    return kPositions[type >= PEP_C && type <= PRO_N ? static_cast<std::size_t>(type) : 0];
}

// The number of losses is only a promise: reading stops where the line does.
void read_losses(CWordReader& fields, std::vector<double>& losses) {
    std::size_t number = 0;
    fields.Read(number);
    for (; number > 0 && fields.Good(); --number) {
        double mass = 0.0;
        std::string_view average;
        if (fields.Read(mass)) losses.push_back(mass);
        fields.Word(average);
    }
}

// What cannot be read, and all behind it, keeps its default; false then. The composition may be
// missing.
bool read_definition(std::string_view value, CMod& mod) {
    CWordReader fields(value);
    fields.Word(mod.m_strSites);
    std::string_view position;
    if (fields.Word(position)) mod.m_eType = position_type(position);
    fields.Read(mod.m_lfMass);
    std::string_view average;
    fields.Word(average);
    read_losses(fields, mod.m_vLossMass);
    const bool isWhole = fields.Good();
    mod.m_strComposition.clear();  // the impossible default is for mods without a definition
    fields.Word(mod.m_strComposition);
    return isWhole;
}

}  // namespace

std::string CMod::GetLine() const {
    std::string line = m_strName + '=' + m_strSites + '\t';
    line += position_word(m_eType);
    const auto appendMasses = [&line](double mass) {
        line += '\t';
        append_fixed(line, mass, 6);
        line += '\t';
        append_fixed(line, mass, 6);
    };
    appendMasses(m_lfMass);
    line += '\t';
    append_integer(line, m_vLossMass.size());
    line += '\t';
    for (const double loss : m_vLossMass)
        appendMasses(loss);
    return line + '\t' + m_strComposition;
}

bool CMod::Mass_Less(const CMod& a, const CMod& b) {
    return mass_less(a.m_lfMass, b.m_lfMass);
}

void CCondition::ReadMod() {
    Message("Reading modifications... " + m_strModPath + '\n', LOG_DEBUG);
    if (!path_exists(m_strModPath)) {
        Message("Invalid modification file: " + m_strModPath + '\n', LOG_ALERT);
        end_process(1);
    }
    DropModAddresses();
    m_vMods.clear();

    CLineReader reader(m_strModPath);
    FAULT_COUNT malformed;
    int flag = 0;
    std::string_view line;
    for (std::uint64_t number = 1; reader.ReadLine(line); ++number) {
        const std::size_t sign = line.find('=');
        if (sign == std::string_view::npos) continue;
        const std::string_view key = line.substr(0, sign);
        if (key == "@NUMBER_MODIFICATION" || key == "label_name") continue;
        if (key.starts_with("name")) {
            flag = to_int(line.substr(line.size() - 2));
        } else if (!key.starts_with("Label_")) {
            CMod& mod = m_vMods.emplace_back();
            mod.m_strName = key;
            mod.m_nFlag = flag;
            if (!read_definition(line.substr(sign + 1), mod)) malformed.Add(number);
        }
    }
    if (!reader.IsOpen() || reader.Failed()) {
        Message("Cannot read the modification file: " + m_strModPath, LOG_ALERT);
    }
    if (malformed.m_uFaults > 0) {
        Message(joined_text("Malformed definitions: ", malformed.m_uFaults, ", the first on line ",
                            malformed.m_uFirstLine, " of the modification file: ", m_strModPath),
                LOG_ALERT);
    }
}

// Whatever replaces or reorders m_vMods calls this: no later allocation may bring an old address
// back as that of another modification, which would then count as fixed. Letters live on beside
// those of the next table.
void CCondition::DropModAddresses() {
    m_setFixMods.clear();
    for (ExtendedAA& letter : m_vExtendedAA)
        letter.m_pMod = nullptr;
}

}  // namespace tessel

// Temporary tables: for each label, the relabelled residues and modifications go into files under
// the output path, in the formats of the ordinary tables, so that worker processes read them with
// the ordinary readers. The modifications of all labels come back as one table.

#include <set>

#include "tessel/base/number.h"
#include "tessel/condition/condition.h"
#include "tessel/platform/file.h"

namespace tessel {
namespace {

std::string table_path(const std::string& prefix, std::size_t labelIndex, const char* extension) {
    std::string path = prefix;
    append_integer(path, static_cast<std::int32_t>(labelIndex + 1));
    return path + extension;
}

std::string first_line(const std::vector<std::string>& labels, std::size_t labelIndex) {
    return "label_name=" + (labelIndex < labels.size() ? labels[labelIndex] : "") + '\n';
}

void save(const CCondition& condition, const std::string& path, const std::string& text) {
    FilePtr file = open_file(path, "wb");
    bool written = false;
    if (file) {
        std::fwrite(text.data(), 1, text.size(), file.get());
        written = close_file(std::move(file));
        if (!written) remove_incomplete(path);
    }
    if (!written) condition.Message("Cannot write the file: " + path, LOG_ALERT);
}

}  // namespace

std::size_t CCondition::WriteConfFiles() {
    ReadElementInfo();
    for (std::size_t i = 0; i < m_vLabels.size(); ++i) {
        ReadMod();
        ReadAA();
        ReadLabelInfo(m_vLabels[i]);
        GenTmpAA(i);
        GenTmpMod(i);
    }
    return m_vLabels.size();
}

void CCondition::ReLoadAllMods() {
    std::set<std::string> names;
    std::vector<CMod> mods;
    for (std::size_t i = 0; i < m_vLabels.size(); ++i) {
        m_strModPath = GetTmpModPath(i);
        ReadMod();
        for (const CMod& mod : m_vMods) {
            if (names.insert(mod.m_strName).second) mods.push_back(mod);
        }
    }
    DropModAddresses();
    m_vMods = std::move(mods);
    CreateModList();
}

std::string CCondition::GetTmpAAPath(const std::size_t& labelIndex) const {
    return table_path(m_strOutputPath, labelIndex, ".aa");
}

std::string CCondition::GetTmpModPath(const std::size_t& labelIndex) const {
    return table_path(m_strOutputPath, labelIndex, ".mod");
}

void CCondition::WriteAA(const std::size_t& labelIndex) const {
    std::string text = first_line(m_vLabels, labelIndex) + "@NUMBER_RESIDUE=26\n";
    for (std::size_t i = 0; i < kResidueLetters; ++i) {
        text += 'R';
        append_integer(text, i + 1);
        text += '=';
        text += static_cast<char>('A' + i);
        text += '|' + m_cAlphaBet.m_strComposition[i] + "|\n";
    }
    save(*this, GetTmpAAPath(labelIndex), text);
}

void CCondition::WriteMod(const std::size_t& labelIndex) const {
    std::string text = first_line(m_vLabels, labelIndex) + "@NUMBER_MODIFICATION=";
    append_integer(text, m_vMods.size());
    text += '\n';
    std::size_t number = 0;
    for (const CMod& mod : m_vMods) {
        text += "name";
        append_integer(text, ++number);
        text += '=' + mod.m_strName + '\t';
        append_integer(text, mod.m_nFlag);
        text += '\n' + mod.GetLine() + '\n';
    }
    save(*this, GetTmpModPath(labelIndex), text);
}

}  // namespace tessel

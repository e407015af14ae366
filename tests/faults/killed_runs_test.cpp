// A process may be killed at any moment while it prepares a database or merges results. Whatever it
// leaves is whole or does not look whole, and a fresh run gives the right files.

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "tessel/condition/condition.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace tessel {
namespace {

namespace fs = std::filesystem;

using std::chrono::microseconds;

// A few in the ordinary run; TESSEL_KILLS=1000 for as many as wanted.
int number_of_kills() {
    const char* wanted = std::getenv("TESSEL_KILLS");
    return wanted == nullptr ? 20 : std::atoi(wanted);
}

microseconds duration_of(const std::function<void()>& action) {
    const auto begin = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
}

// Kills runs of an action after times that are spread over its usual duration.
class CKiller {
public:
    explicit CKiller(std::function<void()> action) : m_fAction(std::move(action)) {
        m_cUsual = duration_of([this] { EXPECT_EQ(test::run_in_child(Child()).m_nExit, 0); });
    }
    /// False when the action was done before.
    bool Kill() {
        test::CChild child(Child());
        const auto usual = static_cast<int>(m_cUsual.count());
        const microseconds time(std::uniform_int_distribution<>(0, usual)(m_cRandom));
        const auto until = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < until) {  // sleeping is not as exact
        }
        child.Kill();
        return child.Wait().m_nSignal == SIGKILL;
    }

private:
    std::function<int()> Child() {
        return [this] {
            m_fAction();
            return 0;
        };
    }

    std::function<void()> m_fAction;
    microseconds m_cUsual{};
    std::mt19937 m_cRandom{1};
};

void prepare(const std::string& path) {
    CCondition condition;
    condition.m_strFastaPath = path;
    condition.m_tMaxProLen = 100'000;
    condition.SetFastaPath();
}

TEST(killed_runs, database_is_whole_or_not_there) {
    const test::CTempFolder folder;
    std::string text;
    std::string expected;
    for (int i = 1; i <= 4000; ++i) {
        const std::string name = "P" + std::to_string(i);
        text += ">" + name + " d\n" + std::string(400, 'A') + "\nK\n";
        expected += ">" + name + "\td\t\n" + std::string(400, 'A') + "K\n>REV_" + name + "\t_REV" +
                    std::to_string(i) + "\nK" + std::string(400, 'A') + '\n';
    }
    const std::string path = folder.Write("db.fasta", text);
    const std::string target = path + "_td.fasta";
    CKiller killer([&] { prepare(path); });

    int killed = 0;
    int unfinished = 0;
    for (int run = 0; killed < number_of_kills() && run < 10 * number_of_kills(); ++run) {
        fs::remove(target);
        killed += killer.Kill() ? 1 : 0;
        if (fs::exists(target)) {
            ASSERT_TRUE(test::read_file(target) == expected) << run;
        } else {
            ++unfinished;
        }
        prepare(path);
        ASSERT_TRUE(test::read_file(target) == expected) << run;
    }
    EXPECT_GE(killed, number_of_kills());
    EXPECT_GT(unfinished, 0);
    std::printf("killed %d, of these unfinished %d\n", killed, unfinished);

    // What they left goes away with the first run of the next day. They may all have been killed
    // before they had begun to write, so one more file of the kind is left here.
    folder.Write("db.fasta_td.fasta.1.2.tmp", ">P1");
    for (const auto& entry : fs::directory_iterator(folder.Path()))
        test::set_file_age(entry.path().string(), 24 * 60 * 60 + 10);
    test::set_file_age(path, 0);
    prepare(path);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 2);
}

TEST(killed_runs, merged_bytes_stand_in_their_input_or_complete_in_the_output) {
    const test::CTempFolder folder;
    std::vector<std::string> names;
    std::vector<std::string> texts;
    std::string expected;
    for (int i = 0; i < 4; ++i) {
        names.push_back(folder.Path("run." + std::to_string(i + 1) + ".res"));
        texts.emplace_back(1'500'000 + i, static_cast<char>('1' + i));
        expected += texts.back();
    }
    const std::string output = folder.Path("run.res");
    const auto writeInputs = [&] {
        for (std::size_t i = 0; i < names.size(); ++i)
            test::write_file(names[i], texts[i]);
    };
    const auto merge = [&] { EXPECT_FALSE(CCondition().MergeFiles(names, output, true)); };
    writeInputs();
    CKiller killer(merge);

    int killed = 0;
    int unfinished = 0;
    for (int run = 0; killed < number_of_kills() && run < 10 * number_of_kills(); ++run) {
        fs::remove(output);
        writeInputs();
        killed += killer.Kill() ? 1 : 0;
        const bool whole = fs::exists(output) && test::read_file(output) == expected;
        unfinished += whole ? 0 : 1;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const bool stays = fs::exists(names[i]) && test::read_file(names[i]) == texts[i];
            ASSERT_TRUE(stays || whole) << "run " << run << ", input " << i;
        }
        writeInputs();
        merge();
        ASSERT_TRUE(test::read_file(output) == expected) << run;
        ASSERT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1) << run;
    }
    EXPECT_GE(killed, number_of_kills());
    EXPECT_GT(unfinished, 0);
    std::printf("killed %d, of these unfinished %d\n", killed, unfinished);
}

}  // namespace
}  // namespace tessel

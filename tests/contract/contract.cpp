// The tests over all rows: each function keeps its contract, and each has a row.

#include "contract/contract.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace lyr::contract {
namespace {

std::vector<Row>& allRows()
{
    static std::vector<Row> rows;
    return rows;
}

std::set<std::string> rowNames()
{
    std::set<std::string> names;
    for (const Row& r : allRows()) {
        names.insert(r.name);
    }
    return names;
}

// The functions that return a status, in the header.
std::set<std::string> declaredNames()
{
    std::ifstream header(LYRSR_SOURCE_DIR "/include/lyrsr.h");
    std::set<std::string> names;
    for (std::string api, type, word; header >> word; api = type, type = word) {
        if (api == "LYRSR_API" && type == "Status") {
            names.insert(word.substr(0, word.find('(')));
        }
    }
    return names;
}

// And in the version script.
std::set<std::string> exportedNames()
{
    std::ifstream script(LYRSR_SOURCE_DIR "/src/lyrsr.map");
    std::set<std::string> names;
    for (std::string word; script >> word;) {
        if (word.starts_with("lyrs") && word.ends_with(";")) {
            names.insert(word.substr(0, word.size() - 1));
        }
    }
    std::erase_if(names, [](const std::string& name) {
        return name == "lyrsrGetLibVersion" || name == "lyrsFree" || name.starts_with("lyrsMalloc_");
    });
    return names;
}

std::vector<std::string> difference(const std::set<std::string>& all, const std::set<std::string>& without)
{
    std::vector<std::string> names;
    std::set_difference(all.begin(), all.end(), without.begin(), without.end(), std::back_inserter(names));
    return names;
}

class Totals : public ::testing::Environment
{
public:
    void TearDown() override
    {
        std::printf("contract: %zu functions, %ld calls, %ld failed allocations\n", rowNames().size(), calls, failures);
    }
    void add(const Report& report)
    {
        calls += report.calls;
        failures += report.allocationsFailed;
    }

private:
    long calls = 0;
    long failures = 0;
};

Totals* const totals = [] {
    auto* const environment = new Totals;
    ::testing::AddGlobalTestEnvironment(environment);
    return environment;
}();

} // namespace

bool addRows(std::vector<Row> rows)
{
    std::move(rows.begin(), rows.end(), std::back_inserter(allRows()));
    return true;
}

void PrintTo(const Row& row, std::ostream* stream)
{
    *stream << row.name;
}

class Contract : public ::testing::TestWithParam<Row>
{};

TEST_P(Contract, IsKept)
{
    const Report report = examine(GetParam());
    totals->add(report);
    for (const std::string& finding : report.findings) {
        ADD_FAILURE() << finding;
    }
}

// The name of the function, and from its second row on a number.
INSTANTIATE_TEST_SUITE_P(Of, Contract, ::testing::ValuesIn(allRows()), [](const auto& info) {
    const std::string& name = info.param.name;
    const auto last = allRows().begin() + static_cast<std::ptrdiff_t>(info.index);
    const auto earlier = std::count_if(allRows().begin(), last, [&](const Row& r) { return r.name == name; });
    return earlier == 0 ? name : name + "_row" + std::to_string(earlier + 1);
});

TEST(ContractRows, CoverTheDeclaredInterface)
{
    const std::set<std::string> declared = declaredNames();
    const std::set<std::string> exported = exportedNames();
    EXPECT_FALSE(declared.empty());
    EXPECT_EQ(difference(declared, rowNames()), std::vector<std::string>{}) << "have no row";
    EXPECT_EQ(difference(rowNames(), declared), std::vector<std::string>{}) << "are not declared";
    EXPECT_EQ(difference(declared, exported), std::vector<std::string>{}) << "are not exported";
    if (const auto absent = difference(exported, declared); !absent.empty()) {
        std::printf("contract: %zu exported names are not declared yet\n", absent.size());
    }
}

} // namespace lyr::contract

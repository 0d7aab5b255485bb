// Traceability: every "Edge cases worth testing" bullet of every Part of the spec is listed in
// docs/edge-cases.md, word for word and in the spec's order, with the tests that show it; every test named
// there exists in tests/*.cpp. A changed or added bullet in the spec, or a renamed test, fails here.
// 64-bit directory offsets: on a 32-bit target (the ARM suite under qemu-arm on a 64-bit host) readdir
// without them fails with EOVERFLOW on the host file system's large offsets.
#define _FILE_OFFSET_BITS 64
#include <dirent.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

const std::string kSpec = ISPTUNE_SOURCE_DIR "/../shared/spec.md";
const std::string kDoc = ISPTUNE_SOURCE_DIR "/docs/edge-cases.md";
const std::string kTests = ISPTUNE_SOURCE_DIR "/tests";

struct Bullet {
    std::string text;               // the bullet's words, without "- "
    std::vector<std::string> tests; // Suite.Name (the doc only)
    int line = 0;
};

struct Part {
    std::string heading; // "Part 1.1: Operation table"
    std::vector<Bullet> bullets;
};

std::vector<std::string> lines_of(const std::string &path, bool *found)
{
    std::ifstream in(path);
    *found = static_cast<bool>(in);
    std::vector<std::string> lines;
    for (std::string text; std::getline(in, text);) {
        if (!text.empty() && text.back() == '\r')
            text.pop_back();
        lines.push_back(text);
    }
    return lines;
}

// The spec: under each "# Part ..." heading, the bullets between "**Edge cases worth testing**" and the
// next bold heading or Part.
std::vector<Part> spec_parts(const std::vector<std::string> &lines)
{
    std::vector<Part> parts;
    bool inside = false;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string &text = lines[i];
        if (text.rfind("# ", 0) == 0) {
            inside = false;
            if (text.rfind("# Part ", 0) == 0)
                parts.push_back({text.substr(2), {}});
        } else if (text.rfind("**", 0) == 0) {
            inside = !parts.empty() && text == "**Edge cases worth testing**";
        } else if (inside && text.rfind("- ", 0) == 0) {
            parts.back().bullets.push_back({text.substr(2), {}, int(i + 1)});
        }
    }
    return parts;
}

// The doc: "## Part ..." headings; under each, "- <bullet>" lines, each followed by a "  Tests: `A.B`, ..."
// line.
std::vector<Part> doc_parts(const std::vector<std::string> &lines)
{
    std::vector<Part> parts;
    const std::regex test_name("`([A-Za-z0-9_]+\\.[A-Za-z0-9_]+)`");
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string &text = lines[i];
        if (text.rfind("## Part ", 0) == 0) {
            parts.push_back({text.substr(3), {}});
        } else if (!parts.empty() && text.rfind("- ", 0) == 0) {
            parts.back().bullets.push_back({text.substr(2), {}, int(i + 1)});
        } else if (!parts.empty() && !parts.back().bullets.empty() && text.rfind("  Tests: ", 0) == 0) {
            for (std::sregex_iterator m(text.begin(), text.end(), test_name), end; m != end; ++m)
                parts.back().bullets.back().tests.push_back((*m)[1]);
        }
    }
    return parts;
}

// Every TEST, TEST_F and TEST_P of tests/*.cpp, as Suite.Name (TEST_P: the fixture, without the
// instantiation's prefix).
std::set<std::string> defined_tests()
{
    std::set<std::string> names;
    const std::regex test("\\bTEST(?:_F|_P)?\\(\\s*([A-Za-z0-9_]+)\\s*,\\s*([A-Za-z0-9_]+)\\s*\\)");
    DIR *dir = opendir(kTests.c_str());
    if (dir == nullptr) {
        ADD_FAILURE() << "cannot open " << kTests;
        return names;
    }
    while (const dirent *entry = readdir(dir)) {
        const std::string file = entry->d_name;
        if (file.size() < 4 || file.compare(file.size() - 4, 4, ".cpp") != 0)
            continue;
        std::ifstream in(kTests + "/" + file);
        std::stringstream whole;
        whole << in.rdbuf();
        const std::string source = whole.str();
        for (std::sregex_iterator m(source.begin(), source.end(), test), end; m != end; ++m)
            names.insert((*m)[1].str() + "." + (*m)[2].str());
    }
    closedir(dir);
    return names;
}

class EdgeCases : public ::testing::Test {
protected:
    void SetUp() override
    {
        bool found = false;
        spec_ = spec_parts(lines_of(kSpec, &found));
        if (!found)
            GTEST_SKIP() << "spec not found at " << kSpec << " (the repo's shared/ folder is expected beside it)";
        doc_ = doc_parts(lines_of(kDoc, &found));
        ASSERT_TRUE(found) << kDoc << " is missing";
    }
    std::vector<Part> spec_, doc_;
};

TEST_F(EdgeCases, EveryBulletOfTheSpecIsListedWordForWordWithItsTests)
{
    ASSERT_GT(spec_.size(), 20u) << "the spec's Parts were not found";
    std::map<std::string, const Part *> listed;
    for (const Part &part : doc_)
        listed[part.heading] = &part;
    for (const Part &part : spec_) {
        if (part.bullets.empty())
            continue;
        const auto it = listed.find(part.heading);
        if (it == listed.end()) {
            ADD_FAILURE() << "docs/edge-cases.md has no \"## " << part.heading << "\"";
            continue;
        }
        const std::vector<Bullet> &mine = it->second->bullets;
        EXPECT_EQ(mine.size(), part.bullets.size()) << part.heading << ": bullets in the doc and in the spec";
        for (size_t i = 0; i < part.bullets.size() && i < mine.size(); ++i) {
            EXPECT_EQ(mine[i].text, part.bullets[i].text)
                << part.heading << ", bullet " << i + 1 << " (spec.md line " << part.bullets[i].line
                << ", edge-cases.md line " << mine[i].line << ")";
            EXPECT_FALSE(mine[i].tests.empty())
                << part.heading << ", bullet " << i + 1 << " (edge-cases.md line " << mine[i].line
                << ") names no test";
        }
    }
}

TEST_F(EdgeCases, EveryTestNamedInTheDocExists)
{
    const std::set<std::string> tests = defined_tests();
    ASSERT_GT(tests.size(), 500u) << "the test sources were not found in " << kTests;
    size_t named = 0;
    for (const Part &part : doc_)
        for (const Bullet &bullet : part.bullets)
            for (const std::string &test : bullet.tests) {
                ++named;
                EXPECT_EQ(tests.count(test), 1u)
                    << test << " (edge-cases.md line " << bullet.line << ") is not a test in tests/*.cpp";
            }
    EXPECT_GT(named, 0u);
}

} // namespace

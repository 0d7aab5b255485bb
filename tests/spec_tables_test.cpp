// Parts 2.1, 2.2, 3.4: the library's constant tables against the values read from the spec itself.
// The test parses /work/shared/spec.md (its markdown tables and the prose that gives values) and compares
// every value, element width and length with the library's objects. Only the registry below (name ->
// object) is typed here; no value is, so a table re-typed wrongly in both places cannot pass.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

extern "C" {
#include "isptune.h"
#include "profiles/profiles.h"
#include "refresh/refresh.h"
}

namespace {

// ---- Registry: each table name the spec gives, mapped to the library's object ------------------------

struct Entry {
    const void *address;
    size_t element_size; // bytes
    size_t count;
};

template <typename A> Entry entry(const A &object)
{
    using E = std::remove_cv_t<std::remove_all_extents_t<A>>;
    static_assert(std::is_integral_v<E> && std::is_unsigned_v<E>, "spec tables hold unsigned integers");
    return Entry{&object, sizeof(E), sizeof(A) / sizeof(E)};
}
#define TABLE(t) {#t, entry(t)}

const std::map<std::string, Entry> &registry()
{
    static const std::map<std::string, Entry> tables = {
        // Part 2.1
        TABLE(gColorSatAttr), TABLE(gColorAnFCStrength), TABLE(gColorAnFCThreshold), TABLE(gColorAnFCOffset),
        TABLE(gColorEdgeSmoothThr), TABLE(gColorEdgeSmoothSlope), TABLE(gColorAntiAliasThr),
        TABLE(gColorAntiAliasSlope), TABLE(gColorNrCoarseStr), TABLE(gColorDetailEnhanceStr),
        TABLE(gColorNoiseSuppressStr), TABLE(gColorSharpenLumaStr), TABLE(gColorSharpenUd), TABLE(gColorSharpenD),
        TABLE(gColorTextureThr), TABLE(gColorSharpenEdge), TABLE(gColorEdgeThr), TABLE(gColorOverShoot),
        TABLE(gColorUnderShoot), TABLE(gColorshootSupStr), TABLE(gColorDetailCtrl), TABLE(gColorStrength),
        TABLE(gColorBlendRatio), TABLE(gColorDefog), TABLE(gColorDRCStrength),
        TABLE(gColorHighCCM), TABLE(gColorMidCCM), TABLE(gColorLowCCM),
        TABLE(gColorCCMHighColorTemp), TABLE(gColorCCMMidColorTemp), TABLE(gColorCCMLowColorTemp),
        TABLE(gColorAWBLowColorTemp), TABLE(gColorAWBHighColorTemp), TABLE(gColorCompensation),
        TABLE(gColorAGainRangeMax), TABLE(gColorDGainRangeMax), TABLE(gColorISPDGainRangeMax),
        TABLE(gColorAEWeightTable), TABLE(g_gamma_table_day),
        // Part 2.2
        TABLE(gNightEdgeSmoothThr), TABLE(gNightEdgeSmoothSlope), TABLE(gNightAntiAliasThr),
        TABLE(gNightAntiAliasSlope), TABLE(gNightNrCoarseStr), TABLE(gNightDetailEnhanceStr),
        TABLE(gNightNoiseSuppressStr), TABLE(gNightSharpenLumaStr), TABLE(gNightSharpenUd), TABLE(gNightSharpenD),
        TABLE(gNightTextureThr), TABLE(gNightSharpenEdge), TABLE(gNightEdgeThr), TABLE(gNightOverShoot),
        TABLE(gNightUnderShoot), TABLE(gNightshootSupStr), TABLE(gNightDetailCtrl), TABLE(gNightStrength),
        TABLE(gNightBlendRatio), TABLE(gNightDefog), TABLE(gNightDRCStrength),
        TABLE(g_3dnr_SBS0_night), TABLE(g_3dnr_SBS1_night), TABLE(g_3dnr_SBS2_night), TABLE(g_3dnr_SBS3_night),
        TABLE(g_3dnr_SDS0_night), TABLE(g_3dnr_SDS1_night), TABLE(g_3dnr_SDS2_night), TABLE(g_3dnr_SDS3_night),
        TABLE(g_3dnr_STH0_night), TABLE(g_3dnr_STH1_night), TABLE(g_3dnr_STH2_night), TABLE(g_3dnr_STH3_night),
        TABLE(g_3dnr_MDP_night), TABLE(g_3dnr_Pro3_night), TABLE(g_3dnr_MDDZ1_night), TABLE(g_3dnr_MDDZ2_night),
        TABLE(g_3dnr_MATH1_night), TABLE(g_3dnr_MATH2_night), TABLE(g_3dnr_TFS1_night), TABLE(g_3dnr_TFS2_night),
        TABLE(g_3dnr_SFC_night), TABLE(g_3dnr_TFC_night), TABLE(g_3dnr_TPC_night), TABLE(g_3dnr_TRC_night),
        TABLE(gNightVPSSSharpenUd), TABLE(gNightVPSSSharpenD), TABLE(gNightVPSSTextureThr),
        TABLE(gNightVPSSSharpenEdge), TABLE(gNightVPSSEdgeThd), TABLE(gNightVPSSOverShoot),
        TABLE(gNightVPSSUnderShoot), TABLE(gNightVPSSShootSupStr), TABLE(gNightVPSSDetailCtrl),
        TABLE(gNightCompensation), TABLE(gNightAGainRangeMax), TABLE(gNightDGainRangeMax),
        TABLE(gNightISPDGainRangeMax), TABLE(g_ccm_table_night), TABLE(gNightAEWeightTable),
        TABLE(g_gamma_table_night),
        // Part 3.4
        TABLE(g_3dnr_SBS0_day), TABLE(g_3dnr_SBS1_day), TABLE(g_3dnr_SBS2_day), TABLE(g_3dnr_SBS3_day),
        TABLE(g_3dnr_SDS0_day), TABLE(g_3dnr_SDS1_day), TABLE(g_3dnr_SDS2_day), TABLE(g_3dnr_SDS3_day),
        TABLE(g_3dnr_STH0_day), TABLE(g_3dnr_STH1_day), TABLE(g_3dnr_STH2_day), TABLE(g_3dnr_STH3_day),
        TABLE(g_3dnr_MDP_day), TABLE(g_3dnr_Pro3_day), TABLE(g_3dnr_MATH1_day), TABLE(g_3dnr_MATH2_day),
        TABLE(g_3dnr_MDDZ1_day), TABLE(g_3dnr_MDDZ2_day), TABLE(g_3dnr_TFS1_day), TABLE(g_3dnr_TFS2_day),
        TABLE(g_3dnr_SFC_day), TABLE(g_3dnr_TFC_day), TABLE(g_3dnr_TPC_day), TABLE(g_3dnr_TRC_day),
        TABLE(g_black_level_table), TABLE(g_black_level_table_day), TABLE(g_black_level_table_60),
        TABLE(g_gamma_table_day_highgain), TABLE(g_gamma_table_night_highgain),
    };
    return tables;
}
#undef TABLE

uint64_t element_at(const Entry &e, size_t i)
{
    const unsigned char *p = static_cast<const unsigned char *>(e.address) + i * e.element_size;
    switch (e.element_size) {
    case 1: return *p;
    case 2: { uint16_t v; std::memcpy(&v, p, sizeof v); return v; }
    case 4: { uint32_t v; std::memcpy(&v, p, sizeof v); return v; }
    default: { uint64_t v; std::memcpy(&v, p, sizeof v); return v; }
    }
}

// ---- What the spec says --------------------------------------------------------------------------------

struct SpecTable {
    std::string name;
    int line = 0;                      // spec.md line that defines it
    int bits = 0;                      // element width the spec gives (8, 16, 32)
    size_t count = 0;                  // number of entries the spec gives
    std::map<size_t, uint64_t> values; // index -> value (all entries, or the listed nodes of a curve)
    size_t grid_columns = 0;           // a weight grid's zones per row (0: not a grid)
    std::optional<uint64_t> grid_sum;  // a weight grid's stated sum (Part 2.2 edge cases)
};

// "the same as `other` from node first to node last"
struct SameAs {
    std::string name, other;
    size_t first, last;
    int line;
};

// A single value the spec gives for another Part's table ("where the profile curve has 76").
struct Point {
    std::string name;
    size_t index;
    uint64_t value;
    int line;
};

struct PartSpec {
    std::string heading;
    std::vector<SpecTable> tables;
    std::vector<SameAs> same;
    std::vector<Point> points;
    std::map<std::string, int> mentioned; // every table name the Part mentions -> first line
    std::vector<std::string> problems;    // spec text the parser could not read
};

std::string trim(const std::string &s)
{
    const size_t b = s.find_first_not_of(" \t");
    if (b == std::string::npos)
        return "";
    return s.substr(b, s.find_last_not_of(" \t") - b + 1);
}

std::vector<std::string> cells(const std::string &row)
{
    std::vector<std::string> out;
    std::string t = trim(row);
    if (t.size() < 2 || t.front() != '|' || t.back() != '|')
        return out;
    std::stringstream ss(t.substr(1, t.size() - 2));
    std::string c;
    while (std::getline(ss, c, '|'))
        out.push_back(trim(c));
    return out;
}

bool is_table_name(const std::string &s)
{
    static const std::regex name(R"(^(gColor|gNight|g_)[A-Za-z0-9_]*$)");
    return std::regex_match(s, name);
}

// `name` -> name, when the cell is exactly one backticked table name.
std::optional<std::string> name_cell(const std::string &cell)
{
    if (cell.size() > 2 && cell.front() == '`' && cell.back() == '`') {
        std::string n = cell.substr(1, cell.size() - 2);
        if (is_table_name(n))
            return n;
    }
    return std::nullopt;
}

std::optional<uint64_t> number(const std::string &s)
{
    static const std::regex dec(R"(^\d+$)"), hex(R"(^0[xX][0-9A-Fa-f]+$)");
    if (std::regex_match(s, dec))
        return std::stoull(s, nullptr, 10);
    if (std::regex_match(s, hex))
        return std::stoull(s, nullptr, 16);
    return std::nullopt;
}

std::vector<uint64_t> number_list(const std::string &s) // "1, 2, 3" or "0x1 0x2"
{
    std::vector<uint64_t> out;
    static const std::regex token(R"(0[xX][0-9A-Fa-f]+|\d+)");
    for (std::sregex_iterator it(s.begin(), s.end(), token), end; it != end; ++it)
        out.push_back(*number(it->str()));
    return out;
}

int bits_of(const std::string &word) // "u16" or "16-bit" or "16"
{
    static const std::regex w(R"(^u?(8|16|32)(-bit)?$)");
    std::smatch m;
    return std::regex_match(word, m, w) ? std::stoi(m[1]) : 0;
}

// "255 u32 entries", "each 12 unsigned 8-bit entries", "9 u16 entries": count and width.
bool count_and_bits(const std::string &text, size_t &count, int &bits)
{
    static const std::regex r(R"((\d+) (?:unsigned )?(u8|u16|u32|8-bit|16-bit|32-bit) entries)");
    std::smatch m;
    if (!std::regex_search(text, m, r))
        return false;
    count = std::stoul(m[1]);
    bits = bits_of(m[2]);
    return true;
}

int bits_in(const std::string &text) // a width named anywhere in the text ("unsigned 16-bit", "u16")
{
    static const std::regex r(R"(\b(u8|u16|u32)\b|unsigned (8|16|32)-bit)");
    std::smatch m;
    if (!std::regex_search(text, m, r))
        return 0;
    return m[1].matched ? bits_of(m[1]) : bits_of(m[2]);
}

int64_t sign_magnitude(uint64_t word) { return (word & 0x8000u) ? -int64_t(word & 0x7FFFu) : int64_t(word); }

class PartParser {
  public:
    explicit PartParser(PartSpec &part) : part_(part) {}

    void line(const std::string &text, int number, bool in_data_model)
    {
        collect_mentions(text, number);
        if (!in_data_model) {
            flush_table();
            return;
        }
        if (!text.empty() && text[0] == '|') {
            table_.push_back({text, number});
            return;
        }
        flush_table();
        if (text.empty() || text.rfind("**", 0) == 0)
            return;
        const bool bullet = text.rfind("- ", 0) == 0;
        const std::string body = bullet ? text.substr(2) : text;
        int defined = -1;
        if (body.size() > 1 && body[0] == '`') {
            const size_t close = body.find('`', 1);
            if (close != std::string::npos && is_table_name(body.substr(1, close - 1)))
                defined = prose_table(body.substr(1, close - 1), body, bullet ? lead_ : "", number);
        }
        if (!bullet) { // a paragraph introduces the tables and bullets after it
            lead_ = body;
            lead_table_ = defined;
        }
    }

    void finish(const std::string &whole_part)
    {
        flush_table();
        // "The copied weight grid sums to 545 over 255 zones." (edge cases): the Part's one weight grid.
        static const std::regex sum(R"(weight grid sums to (\d+) over (\d+) zones)");
        std::smatch m;
        if (std::regex_search(whole_part, m, sum)) {
            if (grid_table_ < 0)
                problem(0, "the Part states a weight grid sum but defines no weight grid");
            else if (part_.tables[size_t(grid_table_)].count != std::stoul(m[2]))
                problem(0, "the weight grid sum is stated over " + m[2].str() + " zones");
            else
                part_.tables[size_t(grid_table_)].grid_sum = std::stoull(m[1]);
        }
    }

  private:
    struct Row {
        std::string text;
        int line;
    };

    void problem(int line, const std::string &what)
    {
        part_.problems.push_back(part_.heading + ", spec.md line " + std::to_string(line) + ": " + what);
    }

    void collect_mentions(const std::string &text, int number)
    {
        static const std::regex tick("`([^`]*)`");
        for (std::sregex_iterator it(text.begin(), text.end(), tick), end; it != end; ++it) {
            const std::string n = (*it)[1];
            const std::string before = text.substr(0, size_t(it->position()));
            // "every table whose name begins with `gColor`" names a prefix, not a table.
            const bool prefix = before.size() >= 12 && before.compare(before.size() - 12, 12, "begins with ") == 0;
            if (is_table_name(n) && !prefix)
                part_.mentioned.emplace(n, number);
        }
    }

    int add(SpecTable t)
    {
        for (const auto &[index, value] : t.values) {
            if (index >= t.count)
                problem(t.line, t.name + ": index " + std::to_string(index) + " beyond the stated " +
                                    std::to_string(t.count) + " entries");
            if (t.bits > 0 && t.bits < 64 && value >> t.bits)
                problem(t.line, t.name + "[" + std::to_string(index) + "] = " + std::to_string(value) +
                                    " does not fit u" + std::to_string(t.bits));
        }
        for (const SpecTable &other : part_.tables)
            if (other.name == t.name)
                problem(t.line, t.name + " is defined twice (also line " + std::to_string(other.line) + ")");
        if (t.bits == 0)
            problem(t.line, t.name + ": the spec gives no element width the test can read");
        if (t.count == 0)
            problem(t.line, t.name + ": the spec gives no length the test can read");
        part_.tables.push_back(std::move(t));
        return int(part_.tables.size()) - 1;
    }

    // A paragraph or bullet that opens with `name`: the values are in its prose.
    int prose_table(const std::string &name, const std::string &text, const std::string &lead, int line)
    {
        SpecTable t;
        t.name = name;
        t.line = line;
        if (!count_and_bits(text, t.count, t.bits) && !count_and_bits(lead, t.count, t.bits))
            t.bits = bits_in(text) ? bits_in(text) : bits_in(lead);
        std::smatch m;

        static const std::regex bytes(R"(\((\d+) bytes\))");
        if (std::regex_search(text, m, bytes) && std::stoul(m[1]) * 8 != t.count * size_t(t.bits))
            problem(line, name + ": " + m[1].str() + " bytes is not " + std::to_string(t.count) + " x u" +
                              std::to_string(t.bits));

        // "Every one of the 255 entries is 1" / "Every entry is 1 except these runs"
        static const std::regex fill(R"(Every (?:one of the \d+ )?entr(?:y|ies) is (\d+))");
        if (std::regex_search(text, m, fill)) {
            for (size_t i = 0; i < t.count; ++i)
                t.values[i] = std::stoull(m[1]);
            static const std::regex grid(R"((\d+) rows of (\d+) zones)");
            std::smatch g;
            if (!std::regex_search(text, g, grid) || std::stoul(g[1]) * std::stoul(g[2]) != t.count)
                problem(line, name + ": no grid of rows x zones matching its " + std::to_string(t.count) +
                                  " entries");
            else
                t.grid_columns = std::stoul(g[2]);
        }

        // "Nodes 0 to 8: 0, 76, ..." and "Every sixteenth node (n = 0, 16 ... 256): 0, 1167, ..."
        static const std::regex first(R"(Nodes (\d+) to (\d+): (\d+(?:, \d+)*))");
        for (std::sregex_iterator it(text.begin(), text.end(), first), end; it != end; ++it) {
            const size_t from = std::stoul((*it)[1]), to = std::stoul((*it)[2]);
            const std::vector<uint64_t> v = number_list((*it)[3]);
            if (v.size() != to - from + 1)
                problem(line, name + ": nodes " + std::to_string(from) + " to " + std::to_string(to) + " list " +
                                  std::to_string(v.size()) + " values");
            for (size_t k = 0; k < v.size(); ++k)
                put(t, from + k, v[k]);
        }
        static const std::regex every(R"(Every (?:sixteenth|16th) node[^:]*: (\d+(?:, \d+)*))");
        for (std::sregex_iterator it(text.begin(), text.end(), every), end; it != end; ++it) {
            const std::vector<uint64_t> v = number_list((*it)[1]);
            if (t.count == 0 || v.size() != (t.count - 1) / 16 + 1)
                problem(line, name + ": every 16th node lists " + std::to_string(v.size()) + " values");
            for (size_t k = 0; k < v.size(); ++k)
                put(t, 16 * k, v[k]);
        }

        // A plain list of exactly `count` values: "1, 0, 0, 0, 1, 0, 0, 0, 1".
        if (t.values.empty()) {
            static const std::regex list(R"(\b\d+(?:, \d+)+\b)");
            int found = 0;
            for (std::sregex_iterator it(text.begin(), text.end(), list), end; it != end; ++it) {
                const std::vector<uint64_t> v = number_list(it->str());
                if (v.size() != t.count)
                    continue;
                ++found;
                for (size_t k = 0; k < v.size(); ++k)
                    t.values[k] = v[k];
            }
            if (found > 1)
                problem(line, name + ": more than one list of " + std::to_string(t.count) + " values");
        }

        // "the same as `g_gamma_table_day` (Part 2.1) from node 143 to node 256"
        static const std::regex same(R"(the same as `(\w+)`(?: \(Part [0-9.]+\))? from node (\d+) to node (\d+))");
        std::string other;
        if (std::regex_search(text, m, same)) {
            other = m[1];
            part_.same.push_back({name, other, std::stoul(m[2]), std::stoul(m[3]), line});
        }
        // "node 1 is 141 where the profile curve has 76; node 16 is 1343 against 1167"
        static const std::regex node(R"(node (\d+) is (\d+)(?: (?:where the [a-z ]+? has|against) (\d+))?)");
        for (std::sregex_iterator it(text.begin(), text.end(), node), end; it != end; ++it) {
            put(t, std::stoul((*it)[1]), std::stoull((*it)[2]));
            if ((*it)[3].matched) {
                if (other.empty())
                    problem(line, name + ": a value of another curve, but no curve named");
                else
                    part_.points.push_back({other, std::stoul((*it)[1]), std::stoull((*it)[3]), line});
            }
        }

        if (t.values.empty())
            problem(line, name + ": the paragraph names the table but gives no values the test can read");
        const bool grid = t.grid_columns != 0;
        const int index = add(std::move(t));
        if (grid)
            grid_table_ = index;
        return index;
    }

    void put(SpecTable &t, size_t index, uint64_t value)
    {
        auto [it, inserted] = t.values.emplace(index, value);
        if (!inserted && it->second != value)
            problem(t.line, t.name + "[" + std::to_string(index) + "] is given as both " +
                                std::to_string(it->second) + " and " + std::to_string(value));
    }

    void flush_table()
    {
        if (table_.empty())
            return;
        std::vector<Row> rows;
        rows.swap(table_);
        std::vector<std::string> head = cells(rows[0].text);
        for (std::string &h : head)
            for (char &c : h)
                c = char(std::tolower(static_cast<unsigned char>(c)));
        if (rows.size() < 2 || cells(rows[1].text).empty() || cells(rows[1].text)[0].rfind("---", 0) != 0) {
            problem(rows[0].line, "a table without a header separator");
            return;
        }
        rows.erase(rows.begin(), rows.begin() + 2);
        auto column = [&](const std::string &title) -> int {
            for (size_t i = 0; i < head.size(); ++i)
                if (head[i] == title)
                    return int(i);
            return -1;
        };

        // Per-level tables: columns L0 ... L11 (Parts 2.1, 2.2) or 0 ... 11 (Part 3.4).
        std::map<size_t, size_t> levels; // column -> entry index
        static const std::regex level(R"(^l?(\d+)$)");
        for (size_t i = 0; i < head.size(); ++i) {
            std::smatch m;
            if (std::regex_match(head[i], m, level))
                levels[i] = std::stoul(m[1]);
        }
        const int name_col = column("table"), element_col = column("element");

        if (name_col == 0 && !levels.empty()) {
            size_t expect = 0;
            for (const auto &[col, index] : levels)
                if (index != expect++)
                    problem(rows.empty() ? 0 : rows[0].line, "level columns are not 0, 1, 2 ... in order");
            static const std::regex tables_count(R"((\d+) tables)");
            std::smatch m;
            if (std::regex_search(lead_, m, tables_count) && std::stoul(m[1]) != rows.size())
                problem(rows.empty() ? 0 : rows[0].line,
                        "the table lists " + std::to_string(rows.size()) + " rows, the text says " + m[1].str());
            for (const Row &r : rows) {
                const std::vector<std::string> c = cells(r.text);
                SpecTable t;
                t.line = r.line;
                if (c.size() != head.size() || !name_cell(c[0])) {
                    problem(r.line, "a per-level row the test cannot read");
                    continue;
                }
                t.name = *name_cell(c[0]);
                t.bits = element_col >= 0 ? bits_of(c[size_t(element_col)]) : 0;
                size_t lead_count = 0;
                int lead_bits = 0;
                if (count_and_bits(lead_, lead_count, lead_bits)) {
                    if (t.bits == 0)
                        t.bits = lead_bits;
                    if (lead_count != levels.size())
                        problem(r.line, "the text says " + std::to_string(lead_count) + " entries, the table has " +
                                            std::to_string(levels.size()) + " level columns");
                }
                t.count = levels.size();
                for (const auto &[col, index] : levels) {
                    const auto v = number(c[col]);
                    if (!v)
                        problem(r.line, t.name + ": level " + std::to_string(index) + " is not a number");
                    else
                        t.values[index] = *v;
                }
                add(std::move(t));
            }
            return;
        }

        const int words_col = column("stored words"), signed_col = column("as signed values");
        if (name_col == 0 && words_col >= 0) { // colour matrices, Part 2.1
            size_t count = 0;
            int bits = 0;
            count_and_bits(lead_, count, bits);
            static const std::regex row_sum(R"(sums to \+?(\d+))");
            std::smatch m;
            const bool has_sum = std::regex_search(lead_, m, row_sum);
            const int64_t sum = has_sum ? std::stoll(m[1]) : 0;
            for (const Row &r : rows) {
                const std::vector<std::string> c = cells(r.text);
                if (c.size() != head.size() || !name_cell(c[0])) {
                    problem(r.line, "a matrix row the test cannot read");
                    continue;
                }
                SpecTable t;
                t.name = *name_cell(c[0]);
                t.line = r.line;
                t.bits = bits;
                t.count = count;
                const std::vector<uint64_t> words = number_list(c[size_t(words_col)]);
                if (words.size() != count)
                    problem(r.line, t.name + ": " + std::to_string(words.size()) + " stored words");
                for (size_t k = 0; k < words.size(); ++k)
                    t.values[k] = words[k];
                // The spec's own decoding must agree with its words, and each row sum with the text.
                if (signed_col >= 0) {
                    static const std::regex integer(R"(-?\d+)");
                    const std::string s = c[size_t(signed_col)];
                    std::vector<int64_t> decoded;
                    for (std::sregex_iterator it(s.begin(), s.end(), integer), end; it != end; ++it)
                        decoded.push_back(std::stoll(it->str()));
                    for (size_t k = 0; k < words.size() && k < decoded.size(); ++k)
                        if (sign_magnitude(words[k]) != decoded[k])
                            problem(r.line, t.name + "[" + std::to_string(k) + "]: stored word decodes to " +
                                                std::to_string(sign_magnitude(words[k])) + ", listed as " +
                                                std::to_string(decoded[k]));
                }
                for (size_t row = 0; has_sum && row * 3 + 2 < words.size(); ++row) {
                    const int64_t s = sign_magnitude(words[row * 3]) + sign_magnitude(words[row * 3 + 1]) +
                                      sign_magnitude(words[row * 3 + 2]);
                    if (s != sum)
                        problem(r.line, t.name + ": row " + std::to_string(row) + " sums to " + std::to_string(s));
                }
                add(std::move(t));
            }
            return;
        }

        const int value_col = column("value"), values_col = column("values");
        if (name_col == 0 && (value_col >= 0 || values_col >= 0)) { // scalars; black levels (Part 3.4)
            for (const Row &r : rows) {
                const std::vector<std::string> c = cells(r.text);
                if (c.size() != head.size() || !name_cell(c[0])) {
                    problem(r.line, "a row the test cannot read");
                    continue;
                }
                SpecTable t;
                t.name = *name_cell(c[0]);
                t.line = r.line;
                t.bits = element_col >= 0 ? bits_of(c[size_t(element_col)]) : bits_in(lead_);
                if (value_col >= 0) {
                    const auto v = number(c[size_t(value_col)]);
                    if (!v)
                        problem(r.line, t.name + ": value is not a number");
                    else
                        t.values[0] = *v;
                    t.count = 1;
                } else {
                    const std::vector<uint64_t> v = number_list(c[size_t(values_col)]);
                    for (size_t k = 0; k < v.size(); ++k)
                        t.values[k] = v[k];
                    t.count = v.size();
                }
                add(std::move(t));
            }
            return;
        }

        if (head == std::vector<std::string>{"rows", "columns", "weight"}) { // night weight runs, Part 2.2
            if (lead_table_ < 0 || part_.tables[size_t(lead_table_)].grid_columns == 0) {
                problem(rows.empty() ? 0 : rows[0].line, "a runs table after no weight grid");
                return;
            }
            SpecTable &t = part_.tables[size_t(lead_table_)];
            const size_t zones = t.grid_columns;
            static const std::regex range(R"(^(\d+)-(\d+)$)"), all(R"(^\(all (\d+)\)$)");
            for (const Row &r : rows) {
                const std::vector<std::string> c = cells(r.text);
                if (c.size() != 3) {
                    problem(r.line, "a runs row the test cannot read");
                    continue;
                }
                std::vector<size_t> row_list;
                std::smatch m;
                if (std::regex_match(c[0], m, range))
                    for (size_t k = std::stoul(m[1]); k <= std::stoul(m[2]); ++k)
                        row_list.push_back(k);
                else
                    for (uint64_t k : number_list(c[0]))
                        row_list.push_back(size_t(k));
                if (c[1] == "none") { // "(all 1)": the rows keep the fill value
                    const uint64_t base = t.values.empty() ? 0 : t.values.begin()->second;
                    if (!std::regex_match(c[2], m, all) || std::stoull(m[1]) != base)
                        problem(r.line, "a row without runs whose weight is not the fill value");
                    continue;
                }
                const auto weight = number(c[2]);
                if (!std::regex_match(c[1], m, range) || !weight || row_list.empty()) {
                    problem(r.line, "a runs row the test cannot read");
                    continue;
                }
                for (size_t row : row_list)
                    for (size_t col = std::stoul(m[1]); col <= std::stoul(m[2]); ++col) {
                        if (col >= zones || row * zones + col >= t.count)
                            problem(r.line, "a run outside the grid");
                        else
                            t.values[row * zones + col] = *weight;
                    }
            }
            return;
        }

        problem(rows.empty() ? 0 : rows[0].line, "a table of a form the test does not know");
    }

    PartSpec &part_;
    std::vector<Row> table_;
    std::string lead_;     // the last paragraph: introduces the tables and bullets after it
    int lead_table_ = -1;  // the table that paragraph defined, if any
    int grid_table_ = -1;  // the Part's weight grid
};

std::string spec_path() { return ISPTUNE_SOURCE_DIR "/../shared/spec.md"; }

// The Part whose heading starts with "# Part <number>:", parsed. nullopt when the spec is missing.
std::optional<PartSpec> read_part(const std::string &number)
{
    std::ifstream in(spec_path());
    if (!in)
        return std::nullopt;
    PartSpec part;
    const std::string wanted = "# Part " + number + ":";
    PartParser parser(part);
    std::string text, whole;
    bool inside = false, data_model = false;
    for (int line = 1; std::getline(in, text); ++line) {
        if (!text.empty() && text.back() == '\r')
            text.pop_back();
        if (text.rfind("# ", 0) == 0) {
            if (inside)
                break;
            inside = text.rfind(wanted, 0) == 0;
            if (inside)
                part.heading = text.substr(2);
            continue;
        }
        if (!inside)
            continue;
        if (text.rfind("**", 0) == 0 && text.size() > 4 && text.compare(text.size() - 2, 2, "**") == 0)
            data_model = text == "**Data model**";
        whole += text + "\n";
        parser.line(text, line, data_model);
    }
    if (part.heading.empty())
        part.problems.push_back("spec.md has no heading \"" + wanted.substr(2) + " ...\"");
    parser.finish(whole);
    return part;
}

// Compares one Part's tables with the library; returns how many values were compared.
size_t compare(const PartSpec &part)
{
    for (const std::string &p : part.problems)
        ADD_FAILURE() << "cannot read the spec: " << p;
    const auto &reg = registry();
    for (const auto &[name, line] : part.mentioned)
        if (!reg.count(name))
            ADD_FAILURE() << part.heading << " names table " << name << " (spec.md line " << line
                          << ") but the test's registry has no entry for it";

    size_t compared = 0;
    for (const SpecTable &t : part.tables) {
        const auto it = reg.find(t.name);
        if (it == reg.end()) {
            ADD_FAILURE() << t.name << " (spec.md line " << t.line << "): no registry entry";
            continue;
        }
        const Entry &e = it->second;
        EXPECT_EQ(e.element_size * 8, size_t(t.bits))
            << t.name << ": element is " << e.element_size * 8 << "-bit in the library, u" << t.bits
            << " in the spec (line " << t.line << ")";
        EXPECT_EQ(e.count, t.count) << t.name << ": " << e.count << " entries in the library, " << t.count
                                    << " in the spec (line " << t.line << ")";
        uint64_t sum = 0;
        for (size_t i = 0; i < e.count; ++i)
            sum += element_at(e, i);
        for (const auto &[index, value] : t.values) {
            if (index >= e.count) {
                ADD_FAILURE() << t.name << "[" << index << "]: beyond the library's " << e.count << " entries";
                continue;
            }
            ++compared;
            const uint64_t got = element_at(e, index);
            if (got != value)
                ADD_FAILURE() << t.name << "[" << index << "] is " << got << " in the library, " << value
                              << " in the spec (line " << t.line << ")";
        }
        if (t.grid_sum) {
            uint64_t spec_sum = 0;
            for (const auto &[index, value] : t.values)
                spec_sum += value;
            EXPECT_EQ(spec_sum, *t.grid_sum) << t.name << ": the spec's runs do not add up to its stated sum";
            EXPECT_EQ(sum, *t.grid_sum) << t.name << ": the library's grid sum";
            ++compared;
        }
    }
    for (const SameAs &s : part.same) {
        const auto a = reg.find(s.name), b = reg.find(s.other);
        if (a == reg.end() || b == reg.end()) {
            ADD_FAILURE() << s.name << " / " << s.other << " (spec.md line " << s.line << "): no registry entry";
            continue;
        }
        for (size_t i = s.first; i <= s.last; ++i) {
            if (i >= a->second.count || i >= b->second.count) {
                ADD_FAILURE() << s.name << " / " << s.other << ": node " << i << " beyond the tables";
                break;
            }
            ++compared;
            if (element_at(a->second, i) != element_at(b->second, i))
                ADD_FAILURE() << s.name << "[" << i << "] is " << element_at(a->second, i) << ", " << s.other
                              << "[" << i << "] is " << element_at(b->second, i) << "; the spec (line " << s.line
                              << ") says they are the same from node " << s.first << " to " << s.last;
        }
    }
    for (const Point &p : part.points) {
        const auto it = reg.find(p.name);
        if (it == reg.end() || p.index >= it->second.count) {
            ADD_FAILURE() << p.name << "[" << p.index << "] (spec.md line " << p.line << "): not in the registry";
            continue;
        }
        ++compared;
        EXPECT_EQ(element_at(it->second, p.index), p.value)
            << p.name << "[" << p.index << "] in the library vs the spec (line " << p.line << ")";
    }
    std::cout << "[ spec     ] " << part.heading << ": " << part.tables.size() << " tables, " << compared
              << " values compared with the spec" << std::endl;
    return compared;
}

#define READ_PART_OR_SKIP(var, number)                                                                       \
    const std::optional<PartSpec> var = read_part(number);                                                   \
    if (!var)                                                                                                \
    GTEST_SKIP() << "spec not found at " << spec_path() << " (the repo's shared/ folder is expected beside it)"

TEST(SpecTables, Part2_1ColourTablesEqualTheSpec)
{
    READ_PART_OR_SKIP(part, "2.1");
    EXPECT_GT(compare(*part), 0u);
}

TEST(SpecTables, Part2_2NightTablesEqualTheSpec)
{
    READ_PART_OR_SKIP(part, "2.2");
    EXPECT_GT(compare(*part), 0u);
}

TEST(SpecTables, Part3_4DayRefreshTablesEqualTheSpec)
{
    READ_PART_OR_SKIP(part, "3.4");
    EXPECT_GT(compare(*part), 0u);
}

// The registry and the spec name the same tables: none the spec mentions is missing from the registry,
// and every registry entry is given values by one of the three Parts (so no table is silently skipped).
TEST(SpecTables, EveryTableTheSpecNamesIsComparedWithTheSpec)
{
    std::set<std::string> defined, mentioned;
    for (const char *number : {"2.1", "2.2", "3.4"}) {
        READ_PART_OR_SKIP(part, number);
        for (const SpecTable &t : part->tables)
            if (!t.values.empty())
                defined.insert(t.name);
        for (const auto &[name, line] : part->mentioned)
            mentioned.insert(name);
    }
    for (const std::string &name : mentioned) {
        EXPECT_TRUE(registry().count(name)) << name << " is named by the spec but has no registry entry";
        EXPECT_TRUE(defined.count(name)) << name << " is named by the spec but no Part gives its values";
    }
    for (const auto &[name, e] : registry())
        EXPECT_TRUE(defined.count(name)) << name << " is in the registry but no Part gives its values";
    std::cout << "[ spec     ] " << defined.size() << " tables given by the spec, " << registry().size()
              << " in the registry" << std::endl;
}

} // namespace

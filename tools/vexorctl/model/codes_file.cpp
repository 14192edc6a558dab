#include "model/codes_file.h"

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "codes/named.h"

namespace vexorctl {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kSchema = "vexorctl-codes/1";
constexpr std::string_view kRefusals = "refusals";
constexpr std::string_view kNamePattern = "^[a-z0-9_.]+$";

// The kinds of refusals, by their names in the file.
struct FaultWord {
    std::string_view word;
    hxcodes::Fault fault;
};
constexpr FaultWord kFaultWords[] = {
    {"request", hxcodes::Fault::kRequest},
    {"no_object", hxcodes::Fault::kNoObject},
    {"unavailable", hxcodes::Fault::kUnavailable},
};

// A status is one byte, and 0 is success; every other code is a number of 32 bits at most.
constexpr std::uint64_t kMaxStatus = 255;
constexpr std::uint64_t kMaxCode = UINT32_MAX;

bool IsBits(std::string_view list) {
    return list.ends_with("_bits") || list.ends_with("_features");
}

std::size_t LineOf(const std::string& text, std::size_t byte) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(byte, text.size()));
    return 1 + static_cast<std::size_t>(std::count(text.begin(), end, '\n'));
}

// The parser would silently keep the last of two equal keys.
Json Parse(const std::string& text) {
    std::set<std::string> keys;
    const auto watch = [&](int depth, Json::parse_event_t event, const Json& parsed) {
        if (event == Json::parse_event_t::key && depth == 1 &&
            !keys.insert(parsed.get<std::string>()).second) {
            throw CodesFileError("\"" + parsed.get<std::string>() + "\" stands there twice");
        }
        return true;
    };
    try {
        return Json::parse(text, watch);
    } catch (const Json::parse_error& error) {
        throw CodesFileError("is not JSON: line " + std::to_string(LineOf(text, error.byte)));
    }
}

std::string TextAt(const Json& row, const char* key, const std::string& where) {
    const auto found = row.find(key);
    if (found == row.end() || !found->is_string() || found->get<std::string>().empty()) {
        throw CodesFileError(where + ": \"" + key + "\" has to be a text");
    }
    return found->get<std::string>();
}

std::string UnknownKey(const std::string& key) { return "the key \"" + key + "\" is not known"; }

void CheckKeys(const Json& object, std::initializer_list<std::string_view> known,
               const std::string& where) {
    for (const auto& [key, value] : object.items()) {
        if (std::ranges::find(known, key) == known.end()) {
            throw CodesFileError(std::string(where).append(UnknownKey(key)));
        }
    }
}

// Reads the code and the name of each row of a list; no two rows may have the same.
class RowReader {
public:
    RowReader(std::string_view list, std::uint64_t least, std::uint64_t most)
        : list_(list), least_(least), most_(most) {}

    struct Row {
        HX_U32 code;
        std::string name;
        std::string where;
    };

    Row Read(const Json& row) {
        std::string where = std::string(list_) + ", row " + std::to_string(++count_);
        if (!row.is_object()) throw CodesFileError(where + ": has to be an object");
        const auto code = row.find("code");
        if (code == row.end() || !code->is_number_unsigned() ||
            code->get<std::uint64_t>() < least_ || code->get<std::uint64_t>() > most_) {
            throw CodesFileError(where + ": \"code\" has to be a whole number from " +
                                 std::to_string(least_) + " to " + std::to_string(most_));
        }
        const auto number = static_cast<HX_U32>(code->get<std::uint64_t>());
        if (IsBits(list_) && (number & (number - 1)) != 0) {
            throw CodesFileError(where + ": " + std::to_string(number) + " is not one bit");
        }
        std::string name = TextAt(row, "name", where);
        if (!hxcodes::IsFitForScripts(name)) {
            throw CodesFileError(where + ": \"" + name +
                                 "\" is no name: lower case, digits, \"_\" and \".\" only");
        }
        if (!codes_.insert(number).second) {
            throw CodesFileError(where + ": the code " + std::to_string(number) +
                                 " stands there twice");
        }
        if (!names_.insert(name).second) {
            throw CodesFileError(where + ": the name \"" + name + "\" stands there twice");
        }
        return {number, std::move(name), std::move(where)};
    }

private:
    std::string_view list_;
    std::uint64_t least_;
    std::uint64_t most_;
    std::size_t count_ = 0;
    std::set<HX_U32> codes_;
    std::set<std::string> names_;
};

const Json& ArrayAt(const Json& document, std::string_view list) {
    static const Json empty = Json::array();
    const auto found = document.find(list);
    if (found == document.end()) return empty;
    if (!found->is_array()) throw CodesFileError(std::string(list) + ": has to be an array");
    return *found;
}

hxcodes::Fault FaultAt(const Json& row, const std::string& where) {
    if (!row.contains("kind")) return hxcodes::Fault::kRequest;
    const std::string word = TextAt(row, "kind", where);
    std::string known;
    for (const FaultWord& each : kFaultWords) {
        if (each.word == word) return each.fault;
        known.append(known.empty() ? "" : ", ").append(each.word);
    }
    throw CodesFileError(where + ": \"kind\" cannot be \"" + word + "\"; it is one of " + known);
}

}  // namespace

std::string_view CodesFile::Keep(std::string text) { return texts_.emplace_back(std::move(text)); }

CodesFile::CodesFile(const std::string& text) : table_(hxcodes::NoCodes()) {
    const Json document = Parse(text);
    if (!document.is_object()) throw CodesFileError("has to be a JSON object");
    if (document.value("schema", Json()) != kSchema) {
        throw CodesFileError("\"schema\" has to be \"" + std::string(kSchema) + "\"");
    }
    if (document.contains("controller")) controller_ = TextAt(document, "controller", "file");
    for (const auto& [key, value] : document.items()) {
        const bool is_list = key == kRefusals || std::ranges::find(hxcodes::CodeLists(), key,
                                                                   &hxcodes::CodeList::name) !=
                                                     hxcodes::CodeLists().end();
        if (!is_list && key != "schema" && key != "controller") {
            throw CodesFileError(UnknownKey(key));
        }
    }
    RowReader refusals(kRefusals, 1, kMaxStatus);
    for (const Json& row : ArrayAt(document, kRefusals)) {
        RowReader::Row read = refusals.Read(row);
        CheckKeys(row, {"code", "name", "sentence", "kind"}, read.where + ": ");
        refusals_.push_back({read.code, Keep(std::move(read.name)),
                             Keep(TextAt(row, "sentence", read.where)), FaultAt(row, read.where)});
    }
    table_.refusals = refusals_;
    for (const hxcodes::CodeList& list : hxcodes::CodeLists()) {
        RowReader reader(list.name, IsBits(list.name) ? 1 : 0, kMaxCode);
        std::vector<hxcodes::Named>& rows = lists_.emplace_back();
        for (const Json& row : ArrayAt(document, list.name)) {
            RowReader::Row read = reader.Read(row);
            CheckKeys(row, {"code", "name"}, read.where + ": ");
            rows.emplace_back(read.code, Keep(std::move(read.name)));
        }
        table_.*list.names = rows;
    }
}

std::string CodesFileSchema() {
    const auto rows = [](std::uint64_t least, std::uint64_t most, const Json& more,
                         const Json& required) {
        Json properties = {
            {"code", {{"type", "integer"}, {"minimum", least}, {"maximum", most}}},
            {"name", {{"type", "string"}, {"pattern", kNamePattern}}},
        };
        properties.update(more);
        return Json{{"type", "array"},
                    {"items",
                     {{"type", "object"},
                      {"properties", properties},
                      {"required", required},
                      {"additionalProperties", false}}}};
    };
    Json words = Json::array();
    for (const FaultWord& each : kFaultWords) words.push_back(each.word);
    Json properties = {
        {"schema", {{"const", kSchema}}},
        {"controller",
         {{"description", "The controller that the codes are of, as HX_API_Version names it"},
          {"type", "string"},
          {"minLength", 1}}},
        {kRefusals,
         rows(1, kMaxStatus,
              {{"sentence", {{"type", "string"}, {"minLength", 1}}}, {"kind", {{"enum", words}}}},
              {"code", "name", "sentence"})},
    };
    for (const hxcodes::CodeList& list : hxcodes::CodeLists()) {
        properties[std::string(list.name)] =
            rows(IsBits(list.name) ? 1 : 0, kMaxCode, Json::object(), {"code", "name"});
    }
    return Json({{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                 {"title", "The codes of a controller, for vexorctl --codes"},
                 {"type", "object"},
                 {"properties", properties},
                 {"required", {"schema"}},
                 {"additionalProperties", false}})
        .dump(2);
}

}  // namespace vexorctl

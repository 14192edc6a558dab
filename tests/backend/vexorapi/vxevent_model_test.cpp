// Ten thousand random operations on the store, on its files and on its configuration, each compared
// with a plain model: every answer, and every byte of every file.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "vxevent_store.h"

namespace {

// ---- The model ----------------------------------------------------------------------------------
// Files are strings, the memory of the process is numbers; one slot is read or written at a time.

using Files = std::map<std::string, std::string>;

struct Settings {
    unsigned max_events = 0;
    std::string file_name;
};

// One answer of the controller: the events that it writes, and the number that it claims.
struct Answer {
    std::vector<Event> events;
    unsigned count;
};

struct Extent {
    std::uint32_t n, s, e;
};

std::string ModelTime(const Event& event) {
    const std::time_t time = event.TimeStamp;
    std::tm utc;
    char text[64];
    return std::string(asctime_r(gmtime_r(&time, &utc), text)).substr(0, 24);
}

// The few kinds of event that the test throws at the store.
std::string ModelText(const Event& event) {
    static const char* const severities[] = {"[UNKNOWN]", "[OTHER]", "[INFO]",     "[WARNING]",
                                             "[MINOR]",   "[MAJOR]", "[CRITICAL]", "[FATAL]"};
    const char* const severity = event.Severity < 8 ? severities[event.Severity] : "[UNKNOWN]";
    char message[150] = "";
    if (event.Class == 0 && event.Code == 9 && event.SenseDataLength > 0) {
        std::snprintf(message, sizeof message, "EVT_CODE_ADAPTER_FOUND|%s|%d|%.30s| ", severity,
                      event.AdapterID, reinterpret_cast<const char*>(event.SenseData));
    } else if (event.Class == 0 && event.Code == 9) {
        std::snprintf(message, sizeof message, "EVT_CODE_ADAPTER_FOUND_NO_SERIAL|%s|%d| ", severity,
                      event.AdapterID);
    } else if (event.Class == 0 && event.Code == 0) {
        std::snprintf(message, sizeof message, "EVT_CODE_SMART_FROM_OFF_TO_ON|%s|%d| ", severity,
                      event.AdapterID);
    } else if (event.Class == 1) {
        std::snprintf(message, sizeof message, "EVT_CODE_LD_CREATE|%s|%d| ", severity,
                      event.DeviceID);
    } else if (event.Class == 2) {
        std::snprintf(message, sizeof message, "EVT_CODE_HD_RCT_ADD|%s|%d|%08x|%08x|%d|%08x ",
                      severity, event.DeviceID, event.Params[0], event.Params[1],
                      static_cast<int>(event.Params[2]), event.Params[3]);
    } else if (event.Class == 9) {
        std::snprintf(message, sizeof message, "EVT_CODE_BAT_DISCHARGING|%s| ", severity);
    } else if (event.Class == 20) {
        std::snprintf(message, sizeof message, "EVT_Unknown| |%d|%d", event.Class, event.AdapterID);
    }
    return ModelTime(event) + " " + message + "\n";
}

std::uint32_t WordAt(const std::string& bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        word |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[offset + i])) << 8 * i;
    }
    return word;
}

std::string Words(const std::vector<std::uint32_t>& words) {
    std::string bytes;
    for (const std::uint32_t word : words) {
        for (int i = 0; i < 4; ++i) bytes += static_cast<char>(word >> 8 * i & 0xFF);
    }
    return bytes;
}

void WriteBytes(std::string& file, std::size_t offset, const std::string& bytes) {
    if (file.size() < offset + bytes.size()) file.resize(offset + bytes.size(), '\0');
    file.replace(offset, bytes.size(), bytes);
}

std::string BytesOf(const Event& event) {
    return {reinterpret_cast<const char*>(&event), sizeof event};
}

class Model {
public:
    Files files;
    bool folder_exists = true;
    Settings configuration;  // what the file says now
    std::string default_name, seq_name;

    void Init() {
        loaded_ = false;
        settings_ = {};
        magic_ = std::string(32, '\0');
        number_ = capacity_ = start_ = end_ = seq_start_ = 0;
        counters_ = {};
        seq_numbers_ = {};
        seq_rest_ = std::string(80, '\0');
    }

    void CheckIn(unsigned adapters, std::deque<Answer>& controller) {
        CheckInRounds(std::min(adapters, 4u), controller);
        open_.reset();
        seq_open_ = false;
    }

    std::vector<Event> Get(Extent& q) {
        const std::uint32_t asked = q.n;
        std::vector<Event> events;
        if (!Load()) {
            open_.reset();
            return std::vector<Event>(asked, Event{});
        }
        const std::uint32_t last = number_ > 0 ? number_ + seq_start_ - 1 : seq_start_;
        if (q.n > number_) q.n = number_;
        if (number_ > 0 && q.n > 0) {
            if (q.s == 0xFFFFFFFF) {
                if (q.e > last) q.e = last;
                q.s = q.e - q.n + 1;
            }
            if (q.s < seq_start_) q.s = seq_start_;
            events = Read(q.s, q.n);
            q.n = static_cast<std::uint32_t>(events.size());
            if (q.n > 0) q.e = q.s + q.n - 1;
        } else {
            q.n = number_;
            q.s = seq_start_;
            q.e = last;
        }
        open_.reset();
        return events;
    }

    std::pair<std::uint32_t, std::uint32_t> Info() {
        Load();
        open_.reset();
        return {seq_start_, number_};
    }

    std::array<std::uint32_t, 15> Counters() {
        Load();
        open_.reset();
        return counters_;
    }

    void Reset() {
        if (Load()) Create();
        seq_numbers_ = {};
        counters_ = {};
        open_.reset();
    }

private:
    void CheckInRounds(unsigned adapters, std::deque<Answer>& controller) {
        for (;;) {
            std::uint8_t total = 0;
            for (unsigned adapter = 0; adapter < adapters; ++adapter) {
                unsigned count = 0;
                if (!controller.empty()) {
                    const Answer answer = controller.front();
                    controller.pop_front();
                    std::copy(answer.events.begin(), answer.events.end(), poll_.begin());
                    count = answer.count;
                }
                Count(0, count);
                if (count == 0) continue;
                if (!Load() && !Create()) return;
                if (!LoadNumbers() && !CreateNumbers()) return;
                for (unsigned i = 0; i < count; ++i) Store(adapter, poll_[i]);
                Count(count, count);
                SaveHeader();
                WriteBytes(files[seq_name], 0,
                           Words({seq_numbers_.begin(), seq_numbers_.end()}) + seq_rest_);
                total = static_cast<std::uint8_t>(total + count);
            }
            if (total == 0) return;
        }
    }

    void Count(unsigned first, unsigned count) {
        // Positions of the classes 0 to 13 in the file; 11 counts them all.
        static const int positions[] = {0, 3, 1, 6, 5, 2, 4, 7, 8, 9, 10, 12, 13, 14};
        for (unsigned i = first; i < first + count; ++i) {
            ++counters_[11];
            if (poll_[i].Class < 14)
                ++counters_[static_cast<std::size_t>(positions[poll_[i].Class])];
        }
    }

    void LoadSettings() {
        if (loaded_) return;
        loaded_ = true;
        settings_ = configuration;
    }
    void InitHeader() {
        LoadSettings();
        magic_ = "Ombra Event File v0.1" + std::string(11, '\0');
        number_ = start_ = end_ = seq_start_ = 0;
        capacity_ = settings_.max_events == 0 ? 50000 : settings_.max_events;
    }

    bool Load() {
        if (open_) return true;
        LoadSettings();
        name_ = settings_.file_name.empty() ? default_name : settings_.file_name;
        const auto found = files.find(name_);
        if (found == files.end()) {
            InitHeader();
            return false;
        }
        const std::string& file = found->second;
        std::string header = file.substr(0, 52);
        header.resize(52, '\0');
        magic_ = header.substr(0, 32);
        number_ = WordAt(header, 32);
        capacity_ = WordAt(header, 36);
        start_ = WordAt(header, 40);
        end_ = WordAt(header, 44);
        seq_start_ = WordAt(header, 48);
        std::string counters = Words({counters_.begin(), counters_.end()});
        const std::string stored = file.size() > 52 ? file.substr(52, 60) : "";
        counters.replace(0, stored.size(), stored);
        for (std::size_t i = 0; i < 15; ++i) counters_[i] = WordAt(counters, 4 * i);
        if (file.size() < 52 ||
            magic_.substr(0, 22) != std::string("Ombra Event File v0.1\0", 22)) {
            return false;
        }
        open_ = name_;
        return true;
    }
    bool Create() {
        InitHeader();
        if (!folder_exists && name_ == default_name) return false;
        files[name_] = "";
        open_ = name_;
        SaveHeader();
        return true;
    }
    void SaveHeader() {
        WriteBytes(files[*open_], 0,
                   magic_ + Words({number_, capacity_, start_, end_, seq_start_}) +
                       Words({counters_.begin(), counters_.end()}));
    }

    bool LoadNumbers() {
        if (seq_open_) return true;
        const auto found = files.find(seq_name);
        if (found == files.end()) return false;
        std::string bytes = Words({seq_numbers_.begin(), seq_numbers_.end()}) + seq_rest_;
        const std::string stored = found->second.substr(0, 96);
        bytes.replace(0, stored.size(), stored);
        for (std::size_t i = 0; i < 4; ++i) seq_numbers_[i] = WordAt(bytes, 4 * i);
        seq_rest_ = bytes.substr(16);
        seq_open_ = true;
        return true;
    }
    bool CreateNumbers() {
        seq_numbers_ = {};
        seq_rest_ = std::string(80, '\0');
        if (!folder_exists) return false;
        files[seq_name] = std::string(96, '\0');
        seq_open_ = true;
        return true;
    }

    void Store(unsigned adapter, const Event& event) {
        if (event.Class != 0 || event.Code != 9) {
            std::uint32_t& last = seq_numbers_[adapter];
            if (last != 0 && event.SequenceNo != 0 && event.SequenceNo <= last) return;
            last = event.SequenceNo;
        }
        if (end_ > capacity_) end_ = 0;
        std::string text = ModelText(event);
        text.resize(120, '\0');
        WriteBytes(files[*open_], 512 + 192 * std::size_t{end_},
                   std::string("\x01\x01\0\0\0\0\0\0", 8) + BytesOf(event) + text);
        if (number_ < capacity_) ++number_;
        if (++end_ > capacity_) end_ = 0;
        if (end_ == start_) {
            ++seq_start_;
            if (++start_ > capacity_) start_ = 0;
        }
    }

    std::vector<Event> Read(std::uint32_t first, std::uint32_t count) {
        std::vector<Event> events;
        const std::uint64_t past = std::uint64_t{seq_start_} + number_;
        for (std::uint64_t seq = first; seq < past && events.size() < count; ++seq) {
            const std::uint64_t slot =
                (start_ + (seq - seq_start_)) % (std::uint64_t{capacity_} + 1);
            std::string bytes(64, '\0');
            const std::string& file = files[*open_];
            const std::size_t at = 512 + 192 * static_cast<std::size_t>(slot) + 8;
            if (at < file.size()) {
                const std::string stored = file.substr(at, 64);
                bytes.replace(0, stored.size(), stored);
            }
            Event event;
            std::memcpy(&event, bytes.data(), sizeof event);
            events.push_back(event);
        }
        return events;
    }

    bool loaded_ = false;
    Settings settings_;
    std::string magic_, name_;
    std::uint32_t number_ = 0, capacity_ = 0, start_ = 0, end_ = 0, seq_start_ = 0;
    std::array<std::uint32_t, 15> counters_{};
    std::array<std::uint32_t, 4> seq_numbers_{};
    std::string seq_rest_ = std::string(80, '\0');
    std::vector<Event> poll_ = std::vector<Event>(510);  // never cleared, like the store's
    std::optional<std::string> open_;
    bool seq_open_ = false;
};

// ---- The operations -----------------------------------------------------------------------------

class AgainstTheModel : public EventStore {
protected:
    AgainstTheModel() {
        setenv("TZ", "UTC0", 1);
        tzset();
        hxfake::NoteCalls(false);
        elsewhere_ = root_.Path("/elsewhere.ev");
        model_.default_name = root_.Path(kEventFile);
        model_.seq_name = root_.Path(kSeqNoFile);
        model_.Init();
    }

    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

    Event RandomEvent() {
        static const std::pair<int, int> kinds[] = {{0, 9},  {0, 9}, {0, 0},  {1, 2}, {2, 37},
                                                    {2, 37}, {5, 1}, {9, 16}, {20, 7}};
        const auto& [event_class, code] = kinds[Below(std::size(kinds))];
        Event event = MakeEvent(event_class, code, 0);
        // Mostly new, sometimes old, sometimes without a number.
        const unsigned kind = Below(20);
        event.SequenceNo = kind == 0 ? 0 : kind < 4 ? Below(next_number_ + 1) : next_number_++;
        event.TimeStamp = static_cast<std::uint32_t>(random_());
        event.DeviceID = static_cast<HX_U16>(Below(65536));
        event.Severity = static_cast<HX_U8>(Below(10));
        event.AdapterID = static_cast<HX_U8>(Below(256));
        for (HX_U32& parameter : event.Params) parameter = static_cast<std::uint32_t>(random_());
        event.SenseDataLength = static_cast<HX_U8>(Below(3) == 0 ? Below(256) : 0);
        for (HX_U8& byte : event.SenseData) byte = static_cast<HX_U8>('A' + Below(26));
        if (Below(2) == 0) event.SenseData[Below(30)] = 0;
        return event;
    }

    std::deque<Answer> RandomAnswers() {
        std::deque<Answer> answers;
        for (unsigned i = Below(8); i > 0; --i) {
            const unsigned kind = Below(20);
            Answer answer{{},
                          kind < 8    ? 0
                          : kind < 17 ? 1 + Below(6)
                          : kind < 19 ? 50
                                      : Below(256)};
            // A controller that lies about what it has delivered leaves the rest as it was.
            const unsigned written = kind == 16 ? Below(answer.count + 1) : answer.count;
            for (unsigned k = 0; k < written; ++k) answer.events.push_back(RandomEvent());
            answers.push_back(std::move(answer));
        }
        return answers;
    }

    void DoCheckIn() {
        const unsigned adapters = Below(10) == 0 ? Below(256) : Below(5);
        std::deque<Answer> answers = RandomAnswers();
        std::deque<Answer> left = answers;
        hxfake::On<&HX_EVT_GetEvent>().Always([&](HX_U8, HX_U8 max, HX_U8* count, Event* events) {
            EXPECT_EQ(50, max);
            if (left.empty()) return HX_U8{0};
            std::copy(left.front().events.begin(), left.front().events.end(), events);
            *count = static_cast<HX_U8>(left.front().count);
            left.pop_front();
            return HX_U8{0};
        });
        VX_EvFile_CheckIn(static_cast<HX_U8>(adapters));
        model_.CheckIn(adapters, answers);
        EXPECT_EQ(answers.size(), left.size());
    }

    void DoGet() {
        const std::uint32_t first = Below(3) == 0 ? kNewestEvents : Below(next_number_ + 10);
        const std::uint32_t last = Below(3) == 0 ? 0xFFFFFFFF : Below(next_number_ + 10);
        Extent query{Below(4) == 0 ? 0 : Below(120), first, last};
        const Page page = Get(query.n, query.s, query.e);
        const std::vector<Event> expected = model_.Get(query);
        EXPECT_EQ(query.n, page.n);
        EXPECT_EQ(query.s, page.s);
        EXPECT_EQ(query.e, page.e);
        ASSERT_EQ(expected.size(), page.events.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_EQ(BytesOf(expected[i]), BytesOf(page.events[i])) << i;
        }
    }

    void DoInfo() {
        HX_U32 first = 1;
        HX_U32 count = 1;
        VX_EvGetInfo(&first, &count);
        EXPECT_EQ(model_.Info(), std::make_pair(first, count));
    }

    void DoCounters() {
        const VX_HX_ChangeCounters counters = Counters();
        std::array<std::uint32_t, 15> words;
        std::memcpy(words.data(), &counters, sizeof counters);
        EXPECT_EQ(model_.Counters(), words);
    }

    void DoReset() {
        VX_EvFile_Reset();
        model_.Reset();
    }

    void DoInit() {
        VX_EvInit();
        model_.Init();
    }

    void DoConfigure() {
        static const unsigned capacities[] = {0, 1, 2, 3, 7, 20, 50, 50};
        model_.configuration = {capacities[Below(std::size(capacities))],
                                Below(3) == 0 ? elsewhere_ : ""};
        root_.Write("/vexorapi.ini", "<c><EventLogConfig type=\"config\" MaxNumOfEvent=\"" +
                                         std::to_string(model_.configuration.max_events) +
                                         "\" Filename=\"" + model_.configuration.file_name +
                                         "\"/></c>");
        if (Below(3) != 0) DoInit();  // otherwise it is not looked at
    }

    void DoDelete() {
        const std::string name = AnyName();
        std::filesystem::remove(name);
        model_.files.erase(name);
    }

    void DoReplace() {
        const std::string name = AnyName();
        if (!model_.folder_exists && name != elsewhere_) return;
        std::string bytes = model_.files.contains(name) ? model_.files[name] : "";
        switch (Below(5)) {
            case 0:  // noise
                bytes.resize(Below(300));
                for (char& byte : bytes) byte = static_cast<char>(Below(256));
                break;
            case 1:  // cut
                bytes.resize(Below(Below(2) == 0 ? 120 : static_cast<unsigned>(bytes.size()) + 1));
                break;
            case 2:  // what it was some time ago
                std::swap(bytes, kept_[name]);
                break;
            case 3:  // another magic
                if (bytes.size() > 20) bytes[20] = '2';
                break;
            default:  // indices that nobody can have written
                WriteBytes(bytes, 0,
                           std::string("Ombra Event File v0.1") + std::string(11, '\0') +
                               Words({Below(100), Below(60), Below(80), Below(80),
                                      Below(2) == 0 ? Below(500) : 0xFFFFFF00u + Below(256)}));
        }
        std::ofstream(name, std::ios::binary) << bytes;
        model_.files[name] = bytes;
    }

    void DoFolder() {
        const std::filesystem::path folder = root_.Path("/opt/kestrel/raid/db");
        if (model_.folder_exists) {
            std::filesystem::remove_all(folder);
            model_.files.erase(model_.default_name);
            model_.files.erase(model_.seq_name);
        } else {
            std::filesystem::create_directory(folder);
        }
        model_.folder_exists = !model_.folder_exists;
    }

    std::string AnyName() {
        const std::string names[] = {model_.default_name, model_.default_name, model_.seq_name,
                                     elsewhere_};
        return names[Below(std::size(names))];
    }

    void ExpectEqualFiles() {
        for (const std::string& name : {model_.default_name, model_.seq_name, elsewhere_}) {
            const bool exists = std::filesystem::exists(name);
            ASSERT_EQ(model_.files.contains(name), exists) << name;
            if (!exists) continue;
            std::ifstream file(name, std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            ASSERT_TRUE(model_.files[name] == bytes) << name;
        }
    }

    std::mt19937 random_{20231114};
    Model model_;
    std::string elsewhere_;
    HX_U32 next_number_ = 1;
    Files kept_;
};

// The model is strings that grow byte by byte, which the sanitizers make five times as slow. They
// look for bad accesses, and the first half has every kind of operation dozens of times.
constexpr int kOperations = kSanitized ? 5000 : 10000;

TEST_F(AgainstTheModel, TenThousandOperationsGiveTheSameAnswersAndBytes) {
    DoConfigure();
    for (int operation = 0; operation < kOperations; ++operation) {
        const unsigned kind = Below(100);
        SCOPED_TRACE("operation " + std::to_string(operation) + " of kind " + std::to_string(kind));
        if (kind < 45) {
            DoCheckIn();
        } else if (kind < 70) {
            DoGet();
        } else if (kind < 75) {
            DoInfo();
        } else if (kind < 83) {
            DoCounters();
        } else if (kind < 86) {
            DoReset();
        } else if (kind < 88) {
            DoInit();
        } else if (kind < 91) {
            DoConfigure();
        } else if (kind < 93) {
            DoDelete();
        } else if (kind < 98 || model_.folder_exists) {
            DoReplace();
        } else {
            DoFolder();
        }
        if (model_.folder_exists && Below(100) == 0) DoFolder();
        ASSERT_NO_FATAL_FAILURE(ExpectEqualFiles());
        ASSERT_FALSE(HasFailure());
    }
}

}  // namespace

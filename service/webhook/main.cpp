// hxraidsvc-webhook: delivers one alert by HTTPS, as a process of its own, so that neither names
// that are resolved slowly nor the memory of libcurl and TLS are the service's.
//
// Standard input: a line of JSON (url, ca_file, secret_file, limit_ms, id), then the body.
// Standard output, when it fails: a line of JSON (error, refused, wait_s). Exit status: 0
// delivered, 1 not.
#include <curl/curl.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "descriptor.h"

namespace {

using Json = nlohmann::json;

constexpr std::size_t kMostSecret = 4096;
constexpr std::size_t kMostAnswer = std::size_t{64} << 10;

/// Why it was not delivered.
struct NotDelivered : std::runtime_error {
    enum class Again { kLater, kRefused };
    NotDelivered(const std::string& reason, Again when, long wait = 0)
        : std::runtime_error(reason), again(when), wait_s(wait) {}
    Again again;
    long wait_s;  // the receiver asks for so long
};
using Again = NotDelivered::Again;

std::string SecretIn(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) {
        throw NotDelivered(path + ": " + std::strerror(errno), Again::kRefused);
    }
    if (!S_ISREG(status.st_mode) || (status.st_mode & (S_IRWXG | S_IRWXO)) != 0 ||
        (status.st_uid != 0 && status.st_uid != geteuid())) {
        throw NotDelivered(path + " must be a file that its owner alone can read: chmod 600",
                           Again::kRefused);
    }
    std::array<char, kMostSecret> bytes{};
    const ssize_t count = read(file.Get(), bytes.data(), bytes.size());
    std::string secret(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    while (!secret.empty() && (secret.back() == '\n' || secret.back() == '\r')) secret.pop_back();
    if (secret.empty()) throw NotDelivered(path + " has no secret", Again::kRefused);
    return secret;
}

std::string Signature(const std::string& secret, const std::string& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    unsigned size = 0;
    if (HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
             reinterpret_cast<const unsigned char*>(text.data()), text.size(), bytes.data(),
             &size) == nullptr) {
        throw NotDelivered("the signature cannot be made", Again::kLater);
    }
    constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    for (unsigned index = 0; index < size; ++index) {
        const unsigned byte = bytes[index];
        digits += kDigits[byte >> 4];
        digits += kDigits[byte & 0xF];
    }
    return digits;
}

// The answer's body tells nothing; one that never ends is broken off.
std::size_t TakeAnswer(char* /*bytes*/, std::size_t size, std::size_t count, void* taken) {
    auto& sum = *static_cast<std::size_t*>(taken);
    sum += size * count;
    return sum > kMostAnswer ? 0 : size * count;
}

class Headers {
public:
    Headers() = default;
    ~Headers() { curl_slist_free_all(list_); }
    Headers(const Headers&) = delete;
    Headers& operator=(const Headers&) = delete;
    void Add(const std::string& line) { list_ = curl_slist_append(list_, line.c_str()); }
    curl_slist* Get() const { return list_; }

private:
    curl_slist* list_ = nullptr;
};

void AddSignature(Headers& headers, const Json& order, const std::string& body) {
    const std::string path = order.at("secret_file");
    if (path.empty()) return;
    const std::string time = std::to_string(std::time(nullptr));
    headers.Add("X-Hxraid-Timestamp: " + time);
    headers.Add("X-Hxraid-Signature: sha256=" + Signature(SecretIn(path), time + "." + body));
}

void Judge(CURL* curl) {
    long code = 0;
    curl_off_t wait = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &code);
    curl_easy_getinfo(curl, CURLINFO_RETRY_AFTER, &wait);
    if (code >= 200 && code < 300) return;
    const std::string what = "the receiver answered " + std::to_string(code);
    if (code >= 300 && code < 400) {
        throw NotDelivered(what + ", a redirection, which is not followed", Again::kRefused);
    }
    const bool is_later = code == 429 || code == 408 || code >= 500;
    throw NotDelivered(what, is_later ? Again::kLater : Again::kRefused, static_cast<long>(wait));
}

template <class Value>
void Set(CURL* curl, CURLoption option, Value value) {
    const CURLcode code = curl_easy_setopt(curl, option, value);
    if (code != CURLE_OK) {
        throw NotDelivered(std::string("libcurl: ") + curl_easy_strerror(code), Again::kRefused);
    }
}

void Deliver(const Json& order, const std::string& body) {
    Headers headers;
    headers.Add("Content-Type: application/json");
    headers.Add("Expect:");  // no second round trip for a small body
    headers.Add("Idempotency-Key: " + order.at("id").get<std::string>());
    AddSignature(headers, order, body);
    const std::unique_ptr<CURL, void (*)(CURL*)> curl(curl_easy_init(), curl_easy_cleanup);
    if (!curl) throw NotDelivered("libcurl cannot be started", Again::kLater);
    const std::string url = order.at("url");
    const std::string ca_file = order.at("ca_file");
    const long limit_ms = order.at("limit_ms");
    std::array<char, CURL_ERROR_SIZE> reason{};
    std::size_t taken = 0;
    Set(curl.get(), CURLOPT_ERRORBUFFER, reason.data());
    Set(curl.get(), CURLOPT_URL, url.c_str());
    Set(curl.get(), CURLOPT_PROTOCOLS_STR, "https");
    Set(curl.get(), CURLOPT_FOLLOWLOCATION, 0L);
    Set(curl.get(), CURLOPT_SSL_VERIFYPEER, 1L);
    Set(curl.get(), CURLOPT_SSL_VERIFYHOST, 2L);
    Set(curl.get(), CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
    if (!ca_file.empty()) Set(curl.get(), CURLOPT_CAINFO, ca_file.c_str());
    Set(curl.get(), CURLOPT_NOSIGNAL, 1L);
    Set(curl.get(), CURLOPT_TIMEOUT_MS, limit_ms);
    Set(curl.get(), CURLOPT_CONNECTTIMEOUT_MS, limit_ms);
    Set(curl.get(), CURLOPT_USERAGENT, "hxraidsvc/" HXRAIDSVC_VERSION);
    Set(curl.get(), CURLOPT_HTTPHEADER, headers.Get());
    Set(curl.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    Set(curl.get(), CURLOPT_POSTFIELDS, body.c_str());
    Set(curl.get(), CURLOPT_WRITEFUNCTION, &TakeAnswer);
    Set(curl.get(), CURLOPT_WRITEDATA, &taken);
    const CURLcode code = curl_easy_perform(curl.get());
    // An answer that is too long has come, whatever follows its head.
    if (code != CURLE_OK && code != CURLE_WRITE_ERROR) {
        const std::string more = reason[0] == '\0' ? "" : std::string(": ") + reason.data();
        throw NotDelivered(curl_easy_strerror(code) + more, Again::kLater);
    }
    Judge(curl.get());
}

int Fail(const std::string& error, bool is_refused, long wait_s) {
    const Json told{{"error", error}, {"refused", is_refused}, {"wait_s", wait_s}};
    std::puts(told.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
    return 1;
}

int Run() {
    try {
        const std::string input{std::istreambuf_iterator<char>(std::cin), {}};
        const std::size_t end = std::min(input.find('\n'), input.size());
        Deliver(Json::parse(input.substr(0, end)), input.substr(std::min(end + 1, input.size())));
        return 0;
    } catch (const NotDelivered& failure) {
        return Fail(failure.what(), failure.again == Again::kRefused, failure.wait_s);
    } catch (const std::exception& failure) {
        return Fail(failure.what(), true, 0);
    }
}

}  // namespace

int main() {
    try {
        return Run();
    } catch (...) {
        return 1;  // no memory even to say why
    }
}

// The version registry: four numbers per module, built in, the event service's read from its file.
#include "vexorapi_version.h"

#include <climits>
#include <cstddef>
#include <cstdlib>

#include "read_file.h"
#include "root_path.h"

constinit int productVersionMajor = 0, productVersionMinor = 0, productVersionOEM = 0,
              productVersionBuild = 0;
constinit int php_vexorapiVersionMajor = 0, php_vexorapiVersionMinor = 0,
              php_vexorapiVersionOEM = 0, php_vexorapiVersionBuild = 0;
constinit int vexorapiVersionMajor = 0, vexorapiVersionMinor = 0, vexorapiVersionOEM = 0,
              vexorapiVersionBuild = 0;
constinit int eventSvcVersionMajor = 0, eventSvcVersionMinor = 0, eventSvcVersionOEM = 0,
              eventSvcVersionBuild = 0;

constinit char m_VerFile[512] = {};

namespace {

constexpr char kVersionFile[] = "/hxraidver.dat";

// At most this many bytes are read, so that an endless file ends.
constexpr std::size_t kVersionFileLimit = std::size_t{1} << 20;

struct Module {
    ModuleName name;
    int* major;
    int* minor;
    int* oem;
    int* build;
};
constexpr Module kModules[] = {
    {PRODUCT, &productVersionMajor, &productVersionMinor, &productVersionOEM, &productVersionBuild},
    {PHP_VEXORAPI, &php_vexorapiVersionMajor, &php_vexorapiVersionMinor, &php_vexorapiVersionOEM,
     &php_vexorapiVersionBuild},
    {VEXORAPI, &vexorapiVersionMajor, &vexorapiVersionMinor, &vexorapiVersionOEM,
     &vexorapiVersionBuild},
    {HXRAIDSVC, &eventSvcVersionMajor, &eventSvcVersionMinor, &eventSvcVersionOEM,
     &eventSvcVersionBuild},
};

struct BuiltIn {
    ModuleName name;
    int major, minor, oem, build;
};
constexpr BuiltIn kEventSvcBuiltIn{HXRAIDSVC, 1, 0, 0, 7};
constexpr BuiltIn kBuiltIns[] = {
    {PRODUCT, 1, 0, 0, 16},
    {PHP_VEXORAPI, 1, 0, 0, 14},
    {VEXORAPI, 1, 2, 0, 2},
    kEventSvcBuiltIn,
};

void StoreBuiltIn(const BuiltIn& version) {
    STORE_KEY(version.name, version.major, version.minor, version.oem, version.build);
}

// The characters of one field.
class FieldText {
public:
    // Drops bytes that do not fit, and 0xFF, which equals EOF where characters are signed.
    void Append(unsigned char byte) {
        if (byte < 0xFF && length_ < kCapacity) text_[length_++] = static_cast<char>(byte);
    }

    // The number at the start of the text, as atoi reads it. Larger numbers become the largest int:
    // atoi's result for them is undefined and differs between word sizes.
    int TakeNumber() {
        text_[length_] = '\0';
        length_ = 0;
        const long number = std::strtol(text_, nullptr, 10);
        if (number > INT_MAX) return INT_MAX;
        if (number < INT_MIN) return INT_MIN;
        return static_cast<int>(number);
    }

private:
    static constexpr std::size_t kCapacity = 50;
    char text_[kCapacity + 1];
    std::size_t length_ = 0;
};

// Parses the file byte by byte.
class VersionReader {
public:
    void Take(unsigned char byte) {
        if (byte != '.') {
            field_.Append(byte);
            return;
        }
        const int number = field_.TakeNumber();
        if (fields_ < kFieldsBeforeDot) *kBeforeDot[fields_++] = number;
    }

    void End() { eventSvcVersionBuild = field_.TakeNumber(); }

private:
    // The fields that end with a dot. A fourth one and those after it are ignored.
    static constexpr int* kBeforeDot[] = {&eventSvcVersionMajor, &eventSvcVersionMinor,
                                          &eventSvcVersionOEM};
    static constexpr std::size_t kFieldsBeforeDot = sizeof kBeforeDot / sizeof kBeforeDot[0];
    std::size_t fields_ = 0;
    FieldText field_;
};

void ReadVersion(int descriptor) {
    VersionReader reader;
    char bytes[512];
    for (std::size_t left = kVersionFileLimit; left > 0;) {
        const std::size_t length = ReadBytes(descriptor, bytes, sizeof bytes);
        for (std::size_t at = 0; at < length; ++at) {
            reader.Take(static_cast<unsigned char>(bytes[at]));
        }
        if (length < sizeof bytes) break;
        left -= length;
    }
    reader.End();
}

}  // namespace

void STORE_KEY(int module, int Major, int Minor, int OEM, int Build) {
    for (const Module& row : kModules) {
        if (row.name != module) continue;
        *row.major = Major;
        *row.minor = Minor;
        *row.oem = OEM;
        *row.build = Build;
    }
}

void VX_VER_INIT() {
    for (const BuiltIn& version : kBuiltIns) StoreBuiltIn(version);
}

void getEventSvcVersion() {
    const char* const path = RootPath(m_VerFile, kVersionFile);
    const Descriptor file = path == nullptr ? Descriptor() : OpenForRead(path);
    if (file.IsOpen()) {
        ReadVersion(file.Get());
    } else {
        StoreBuiltIn(kEventSvcBuiltIn);
    }
}

#include "platform/linux/WarmableTool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <filesystem>
#include <link.h>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SpawnedChild.h"

namespace qrx::platform {

namespace {

constexpr const char* kLibraryList = "/etc/ld.so.cache";
constexpr const char* kOwnProgram = "/proc/self/exe";
constexpr const char* kFileCapabilities = "security.capability";
constexpr std::size_t kMostProgramHeaders = 128;
constexpr std::size_t kLongestInterpreter = 256;

/// From the folder of the program.
constexpr std::array<std::string_view, 3> kLibraryPlaces{
    QRX_INSTALLED_WARM_LIBRARY,  // of the command line
    "../libqrxwarm.so",          // of any program in a build folder
    "../../../libqrxwarm.so",    // of the service's bundle
};

std::int64_t nanoseconds(const timespec& time) {
    constexpr std::int64_t kPerSecond = 1'000'000'000;
    return time.tv_sec * kPerSecond + time.tv_nsec;
}

FileIdentity identityIn(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
            nanoseconds(status.st_ctim)};
}

/// What decides which loader starts a program, and for which machine.
struct ProgramKind {
    unsigned char fileClass = 0;
    unsigned char byteOrder = 0;
    std::uint16_t machine = 0;
    std::string interpreter;  ///< empty: statically linked

    bool operator==(const ProgramKind&) const = default;
};

template <class Record>
bool readAt(int file, std::uint64_t offset, Record* records, std::size_t count) {
    const std::size_t size = count * sizeof(Record);
    return ::pread(file, records, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

std::string interpreterNamed(int file, const ElfW(Phdr) & header) {
    std::array<char, kLongestInterpreter> name{};
    const std::size_t size = std::min<std::size_t>(header.p_filesz, name.size() - 1);
    if (!readAt(file, header.p_offset, name.data(), size)) return {};
    return name.data();
}

/// Nothing for what is no program of this machine's word size.
std::optional<ProgramKind> kindOf(const std::string& program) {
    const FileDescriptor file(::open(program.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    ElfW(Ehdr) header{};
    if (!file.isOpen() || !readAt(file.get(), 0, &header, 1)) return std::nullopt;
    const bool isProgram = std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
                           header.e_phentsize == sizeof(ElfW(Phdr)) &&
                           header.e_phnum <= kMostProgramHeaders;
    if (!isProgram) return std::nullopt;
    std::vector<ElfW(Phdr)> parts(header.e_phnum);
    if (!readAt(file.get(), header.e_phoff, parts.data(), parts.size())) return std::nullopt;
    ProgramKind kind{header.e_ident[EI_CLASS], header.e_ident[EI_DATA], header.e_machine, {}};
    const auto named = std::find_if(parts.begin(), parts.end(), [](const ElfW(Phdr) & part) {
        return part.p_type == PT_INTERP;
    });
    if (named != parts.end()) kind.interpreter = interpreterNamed(file.get(), *named);
    return kind;
}

bool isTrusted(const std::string& library) {
    struct stat status {};
    if (::stat(library.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    const bool isOurs = status.st_uid == 0 || status.st_uid == ::geteuid();
    return isOurs && (status.st_mode & S_IWOTH) == 0;
}

/// The loader takes both for the end of a name.
bool canBePreloaded(const std::string& library) {
    return library.find_first_of(": \t\n") == std::string::npos;
}

}  // namespace

std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return identityIn(status);
}

std::optional<ToolWorld> worldOf(const std::string& program) {
    const std::optional<FileIdentity> file = identityOf(program);
    if (!file) return std::nullopt;
    ToolWorld world{program, *file, identityOf(kLibraryList), {}, {}, {}};
    for (const char* const entry : childEnvironment()) {
        if (entry != nullptr) world.environment.emplace_back(entry);
    }
    for (int resource = 0; resource < static_cast<int>(RLIMIT_NLIMITS); ++resource) {
        rlimit limit{};
        if (::getrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0) continue;
        const auto at = static_cast<std::size_t>(resource) * 2;
        world.limits.at(at) = limit.rlim_cur;
        world.limits.at(at + 1) = limit.rlim_max;
    }
    world.users = {::getuid(), ::geteuid(), ::getgid(), ::getegid()};
    return world;
}

std::optional<std::string> whyNotWarmable(const std::string& program) {
    struct stat status {};
    if (::stat(program.c_str(), &status) != 0) return "is not there";
    if (!S_ISREG(status.st_mode)) return "is no file";
    if (::access(program.c_str(), X_OK) != 0) return "may not be run";
    if ((status.st_mode & (S_ISUID | S_ISGID)) != 0) return "runs as somebody else";
    if (::getxattr(program.c_str(), kFileCapabilities, nullptr, 0) >= 0) return "has capabilities";
    const std::optional<ProgramKind> kind = kindOf(program);
    if (!kind) return "is a script or of another machine";
    if (kind->interpreter.empty()) return "is statically linked";
    static const std::optional<ProgramKind> ours = kindOf(kOwnProgram);
    if (kind != ours) return "has another loader or C library";
    return std::nullopt;
}

std::optional<std::string> warmLibrary() {
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink(kOwnProgram, unknown);
    for (const std::string_view place : kLibraryPlaces) {
        std::string library = (program.parent_path() / place).lexically_normal().string();
        if (isTrusted(library) && canBePreloaded(library)) return library;
    }
    return std::nullopt;
}

std::optional<std::uint32_t> fileCreationMask() {
    constexpr std::string_view kLabel = "\nUmask:\t";
    constexpr int kOctal = 8;
    const FileDescriptor file(::open("/proc/self/status", O_RDONLY | O_CLOEXEC));
    std::array<char, 256> text{};  // it stands in the second line
    if (!file.isOpen() || ::read(file.get(), text.data(), text.size() - 1) <= 0) {
        return std::nullopt;
    }
    const char* const label = std::strstr(text.data(), kLabel.data());
    if (label == nullptr) return std::nullopt;
    const char* const digits = label + kLabel.size();
    char* end = nullptr;
    const unsigned long mask = std::strtoul(digits, &end, kOctal);
    if (end == digits || *end != '\n') return std::nullopt;
    return static_cast<std::uint32_t>(mask);
}

}  // namespace qrx::platform

#include "platform/linux/warm/ShortEnd.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <unistd.h>

namespace qrx::platform::warm {

namespace {

using Address = ElfW(Addr);
using Destructor = void (*)();
using Finalize = void (*)(void*);

/// What the program itself has to have done at its end.
struct Program {
    bool isRead = false;
    Address base = 0;  ///< 0: the program lies at a fixed address
    Address end = 0;
    void* handle = nullptr;  ///< under which it registers; null while it has not
    Address destructors = 0;
    std::size_t destructorCount = 0;
    Address lastDestructor = 0;
    bool mayHaveCxxStreams = false;
};

Program program;
Finalize finalize = nullptr;

/// The loader has made addresses of the offsets in some entries of a dynamic section (glibc does
/// with the string table), while others are offsets still.
template <class T>
T* at(Address address) {
    const Address place = address < program.base ? program.base + address : address;
    return reinterpret_cast<T*>(place);  // NOLINT(performance-no-int-to-ptr): as the format has it
}

bool isCxxLibrary(const char* name) {
    constexpr char kUsual[] = "libstdc++.so";
    constexpr char kOther[] = "libc++.so";
    return std::strncmp(name, kUsual, sizeof kUsual - 1) == 0 ||
           std::strncmp(name, kOther, sizeof kOther - 1) == 0;
}

void readDynamicSection(const ElfW(Dyn) * entries) {
    const char* names = nullptr;
    for (const auto* entry = entries; entry->d_tag != DT_NULL; ++entry) {
        const auto value = entry->d_un.d_val;
        if (entry->d_tag == DT_STRTAB) names = at<const char>(value);
        if (entry->d_tag == DT_FINI_ARRAY) program.destructors = value;
        if (entry->d_tag == DT_FINI_ARRAYSZ) program.destructorCount = value / sizeof(Destructor);
        if (entry->d_tag == DT_FINI) program.lastDestructor = value;
    }
    for (const auto* entry = entries; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag != DT_NEEDED || names == nullptr) continue;
        if (isCxxLibrary(names + entry->d_un.d_val)) program.mayHaveCxxStreams = true;
    }
}

/// The first object that the loader names is the program.
int readProgram(dl_phdr_info* object, std::size_t /*size*/, void* /*unused*/) {
    program.isRead = true;
    program.base = object->dlpi_addr;
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = object->dlpi_phdr[i];
        if (part.p_type == PT_LOAD) program.end = program.base + part.p_vaddr + part.p_memsz;
        if (part.p_type == PT_DYNAMIC) readDynamicSection(at<const ElfW(Dyn)>(part.p_vaddr));
    }
    return 1;
}

void readProgramOnce() {
    if (!program.isRead) ::dl_iterate_phdr(readProgram, nullptr);
}

/// Comes after everything that was registered in the copy, before what was registered earlier.
void end(int status, void* /*unused*/) {
    if (program.handle != nullptr) finalize(program.handle);
    const auto* const destructors = at<const Destructor>(program.destructors);
    for (std::size_t left = program.destructorCount; left > 0; --left) {
        destructors[left - 1]();
    }
    if (program.lastDestructor != 0) {
        reinterpret_cast<Destructor>(at<void>(program.lastDestructor))();
    }
    std::fflush(nullptr);
    ::_exit(status);
}

}  // namespace

void endWithoutLibraries() {
    readProgramOnce();
    finalize = reinterpret_cast<Finalize>(::dlsym(RTLD_DEFAULT, "__cxa_finalize"));
    // A program at a fixed address registers under no handle of its own.
    const bool isMovable = program.base != 0;
    if (isMovable && finalize != nullptr && !program.mayHaveCxxStreams) ::on_exit(end, nullptr);
}

}  // namespace qrx::platform::warm

/// The C library's: what atexit and static objects of C++ register with.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) int __cxa_atexit(void (*function)(void*),
                                                                   void* argument, void* handle) {
    using namespace qrx::platform::warm;
    using Function = int (*)(void (*)(void*), void*, void*);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "__cxa_atexit"));
    readProgramOnce();
    const auto place = reinterpret_cast<Address>(handle);
    if (program.base <= place && place < program.end) program.handle = handle;
    return next != nullptr ? next(function, argument, handle) : -1;
}

// Reads the dynamic symbol table of an ELF shared object (32- or 64-bit), for the ABI tests: what
// libisptune.so exports, what it leaves undefined, and the size and section of every exported object.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ElfSymbol {
    std::string name;
    uint64_t size = 0;
    bool defined = false;  // has a section (not SHN_UNDEF)
    bool function = false; // STT_FUNC
    bool object = false;   // STT_OBJECT
    bool writable = false; // defined in a section with SHF_WRITE
    bool global = false;   // STB_GLOBAL or STB_WEAK
};

// Every entry of .dynsym except the null entry and the symbols a sanitizer or coverage build adds for
// its own bookkeeping (__odr_asan.*, __asan_*, __tsan_*, __ubsan_*, __gcov_*, libgcov's mangle_path). Throws std::runtime_error
// when the file is no ELF.
std::vector<ElfSymbol> read_dynamic_symbols(const std::string &path);

// The DT_NEEDED entries of the object's dynamic section (the libraries it links).
std::vector<std::string> read_needed_libraries(const std::string &path);

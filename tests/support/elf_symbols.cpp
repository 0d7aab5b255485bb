// ELF dynamic symbol reader for the ABI tests (see elf_symbols.h).
#include "elf_symbols.h"

#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::vector<unsigned char> read_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot open " + path);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

template <typename T> T at(const std::vector<unsigned char> &bytes, uint64_t offset)
{
    if (offset + sizeof(T) > bytes.size())
        throw std::runtime_error("ELF file truncated");
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
    return value;
}

std::string cstring(const std::vector<unsigned char> &bytes, uint64_t offset)
{
    if (offset >= bytes.size())
        throw std::runtime_error("ELF string outside the file");
    const char *s = reinterpret_cast<const char *>(bytes.data() + offset);
    return std::string(s, strnlen(s, bytes.size() - offset));
}

// Symbols that instrumented builds add to every object (not part of the library's interface).
bool instrumentation(const std::string &name)
{
    for (const char *prefix : {"__odr_asan", "__asan_", "__tsan_", "__ubsan_", "__gcov_", "__gcov0", "__llvm_"})
        if (name.rfind(prefix, 0) == 0)
            return true;
    return name == "mangle_path"; // libgcov's, exported by a --coverage build
}

template <typename Ehdr, typename Shdr, typename Sym, typename Dyn> struct Elf {
    const std::vector<unsigned char> &bytes;
    Ehdr header;
    explicit Elf(const std::vector<unsigned char> &b) : bytes(b), header(at<Ehdr>(b, 0)) {}

    Shdr section(unsigned index) const
    {
        return at<Shdr>(bytes, header.e_shoff + uint64_t(index) * header.e_shentsize);
    }

    std::vector<ElfSymbol> symbols() const
    {
        std::vector<ElfSymbol> out;
        for (unsigned i = 0; i < header.e_shnum; ++i) {
            Shdr s = section(i);
            if (s.sh_type != SHT_DYNSYM)
                continue;
            Shdr strings = section(s.sh_link);
            for (uint64_t off = s.sh_entsize; off + s.sh_entsize <= s.sh_size; off += s.sh_entsize) {
                Sym sym = at<Sym>(bytes, s.sh_offset + off);
                ElfSymbol e;
                e.name = cstring(bytes, strings.sh_offset + sym.st_name);
                e.size = sym.st_size;
                e.defined = sym.st_shndx != SHN_UNDEF;
                unsigned type = sym.st_info & 0xf, bind = sym.st_info >> 4;
                e.function = type == STT_FUNC;
                e.object = type == STT_OBJECT;
                e.global = bind == STB_GLOBAL || bind == STB_WEAK;
                if (e.defined && sym.st_shndx < header.e_shnum)
                    e.writable = (section(sym.st_shndx).sh_flags & SHF_WRITE) != 0;
                if (!instrumentation(e.name))
                    out.push_back(e);
            }
        }
        return out;
    }

    std::vector<std::string> needed() const
    {
        std::vector<std::string> out;
        for (unsigned i = 0; i < header.e_shnum; ++i) {
            Shdr s = section(i);
            if (s.sh_type != SHT_DYNAMIC)
                continue;
            Shdr strings = section(s.sh_link);
            for (uint64_t off = 0; off + sizeof(Dyn) <= s.sh_size; off += sizeof(Dyn)) {
                Dyn d = at<Dyn>(bytes, s.sh_offset + off);
                if (d.d_tag == DT_NULL)
                    break;
                if (d.d_tag == DT_NEEDED)
                    out.push_back(cstring(bytes, strings.sh_offset + d.d_un.d_val));
            }
        }
        return out;
    }
};

using Elf32 = Elf<Elf32_Ehdr, Elf32_Shdr, Elf32_Sym, Elf32_Dyn>;
using Elf64 = Elf<Elf64_Ehdr, Elf64_Shdr, Elf64_Sym, Elf64_Dyn>;

const std::vector<unsigned char> &checked(const std::vector<unsigned char> &bytes, const std::string &path)
{
    if (bytes.size() < EI_NIDENT || std::memcmp(bytes.data(), ELFMAG, SELFMAG) != 0)
        throw std::runtime_error(path + " is not an ELF file");
    return bytes;
}

} // namespace

std::vector<ElfSymbol> read_dynamic_symbols(const std::string &path)
{
    std::vector<unsigned char> bytes = read_file(path);
    checked(bytes, path);
    return bytes[EI_CLASS] == ELFCLASS32 ? Elf32(bytes).symbols() : Elf64(bytes).symbols();
}

std::vector<std::string> read_needed_libraries(const std::string &path)
{
    std::vector<unsigned char> bytes = read_file(path);
    checked(bytes, path);
    return bytes[EI_CLASS] == ELFCLASS32 ? Elf32(bytes).needed() : Elf64(bytes).needed();
}

#include "helpers/susiectl/image_file.h"

namespace tessary::susiectl {
namespace {

template <typename T>
bool ReadWhole(const InputFile& file, uint64_t offset, T& structure) {
    return file.Read(offset, std::as_writable_bytes(std::span(&structure, 1))) == sizeof structure;
}

#ifdef _WIN64
constexpr WORD kOurMachine = IMAGE_FILE_MACHINE_AMD64;
#else
constexpr WORD kOurMachine = IMAGE_FILE_MACHINE_I386;
#endif

}  // namespace

bool IsLoadableDll(const InputFile& file) {
    IMAGE_DOS_HEADER dos;
    IMAGE_NT_HEADERS nt;
    return file.IsOpen() && ReadWhole(file, 0, dos) && dos.e_magic == IMAGE_DOS_SIGNATURE &&
           dos.e_lfanew > 0 && ReadWhole(file, static_cast<uint64_t>(dos.e_lfanew), nt) &&
           nt.Signature == IMAGE_NT_SIGNATURE && nt.FileHeader.Machine == kOurMachine &&
           (nt.FileHeader.Characteristics & IMAGE_FILE_DLL) &&
           nt.OptionalHeader.Magic == IMAGE_NT_OPTIONAL_HDR_MAGIC;
}

}  // namespace tessary::susiectl

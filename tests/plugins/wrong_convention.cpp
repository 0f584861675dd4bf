// The picture functions with a calling convention that hosts do not expect: cdecl, or stdcall with
// one argument more than the interface has (EXTRA_ARGUMENT).
#include "helpers/susiectl/susie_interface.h"

using namespace tessary;

#ifdef EXTRA_ARGUMENT
#define WRONG_CALL __stdcall
#define AND_MORE , int
#else
#define WRONG_CALL __cdecl
#define AND_MORE
#endif

extern "C" {

int __stdcall GetPluginInfo(int, char*, int);
int __stdcall IsSupported(const char*, const char*);
int __stdcall GetPicture(const char*, LONG_PTR, uint32_t, HLOCAL*, HLOCAL*, susie::ProgressCallback,
                         LONG_PTR);

int WRONG_CALL WrongGetPluginInfo(int number, char* buffer, int size AND_MORE) {
    return GetPluginInfo(number, buffer, size);
}

int WRONG_CALL WrongIsSupported(const char* fileName, const char* header AND_MORE) {
    return IsSupported(fileName, header);
}

int WRONG_CALL WrongGetPicture(const char* source, LONG_PTR length, uint32_t flag, HLOCAL* info,
                               HLOCAL* bits, susie::ProgressCallback progress,
                               LONG_PTR userData AND_MORE) {
    return GetPicture(source, length, flag, info, bits, progress, userData);
}
}

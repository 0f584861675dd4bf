// Tells which of the faults that faults.py has put into the code is switched on: the one whose
// number the environment variable TESSARY_FAULT has. Included only by files of its copy.
//
// Where TESSARY_FAULT_TRACE names a folder, that gets a file for each number that is asked for in
// each test (TESSARY_FAULT_TEST, which fault_trace.cpp sets): its name begins with the number, and
// it holds the name of the test.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#ifdef _WIN32
extern "C" __declspec(dllimport) unsigned long __stdcall GetLastError(void);
extern "C" __declspec(dllimport) void __stdcall SetLastError(unsigned long);
#endif

inline void TraceFault(int number, const std::string& folder) {
    const char* const test = std::getenv("TESSARY_FAULT_TEST");
    uint32_t hash = static_cast<uint32_t>(number) * 2654435761u | 1;
    for (const char* at = test; at != nullptr && *at != 0; ++at)
        hash = (hash ^ static_cast<uint8_t>(*at)) * 16777619u;
    // What has another's place is written every time.
    static std::array<std::atomic<uint32_t>, 4096> known;
    if (known[hash % known.size()].exchange(hash) == hash) return;
    const std::string path = folder + "/" + std::to_string(number) + "-" + std::to_string(hash);
    if (std::FILE* const file = std::fopen(path.c_str(), "w")) {
        std::fputs(test != nullptr ? test : "*", file);
        std::fclose(file);
    }
}

inline bool IsChosenFault(int number) {
    // A copy, for the environment moves when one of its variables changes; and one that never ends.
    static const std::string& folder = []() -> std::string& {
        const char* const text = std::getenv("TESSARY_FAULT_TRACE");
        return *new std::string(text != nullptr ? text : "");
    }();
    if (!folder.empty()) TraceFault(number, folder);
    static const int chosen = [] {
        const char* const text = std::getenv("TESSARY_FAULT");
        return text != nullptr ? std::atoi(text) : 0;
    }();
    return number == chosen;
}

// The last error stays what it was: some of the code asks for it right behind.
inline bool FaultIs(int number) {
#ifdef _WIN32
    const unsigned long error = GetLastError();
    const bool is = IsChosenFault(number);
    SetLastError(error);
    return is;
#else
    return IsChosenFault(number);
#endif
}

// What every function of a test plug-in has in common: it is counted, and obeys its script.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/plugins/script.h"

namespace tessary::test {

// How often `name` has been counted.
int& CallCount(const std::string& name);

// "<condition>:<text>" as the script or the content of the last call gave it; empty for none.
std::string& LastCondition();

// True when the DLL exports the function.
bool IsExported(const char* name);

struct FunctionCall {
    const char* name;
    void* frame = nullptr;  // __builtin_dwarf_cfa() of an exported function
    int argumentCount = 0;
    std::string content = {};  // of what it is asked to open
};

// Answers what `work` answers, unless the script of the DLL or of the content has the function do
// something else before, instead or afterwards. `work` is given both scripts.
int Run(const FunctionCall& call, const std::function<int(const Script&)>& work);

}  // namespace tessary::test

// What the windows tell about the plug-ins, and about the files that gave none.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ui/form/list_view.h"

namespace tessary {

struct PluginFacts {
    std::wstring path;
    std::wstring file;  // as CollectionSusie::NameOf tells
    std::wstring kind;
    std::wstring patterns;  // joined by `;`
    std::wstring version;   // what it tells about itself
    std::wstring state;
    std::wstring leftOut;   // why the file is not among the plug-ins; empty: it is
    std::wstring ends;      // in words; empty: there was none
    bool isFolder = false;  // a whole plug-in folder that gave none
    bool isBarred = false;  // until its errors are forgotten
    int32_t errors = 0;
    bool hasSettings = false;  // a settings window of its own
};

// The plug-ins in the order in which they are tried, and behind them the files that were left out.
// No plug-in is called.
std::vector<PluginFacts> ListPlugins();

// Gives a list the columns of plug-ins; fills it.
void SetPluginColumns(ListView& list);
void ShowPlugins(ListView& list, const std::vector<PluginFacts>& plugins);

// A function's failures, as the user knows the function.
struct PluginErrors {
    std::wstring function;
    int32_t count = 0;
};
std::vector<PluginErrors> ErrorsOf(const PluginFacts& plugin);

// All about a plug-in and its file in lines of text.
std::wstring DescribePlugin(const PluginFacts& plugin);

}  // namespace tessary

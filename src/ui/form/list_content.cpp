#include "ui/form/list_content.h"

#include <string_view>

#include "app/base/text.h"

namespace tessary {

int FindEntry(const ListContent& content, const std::wstring& text, int start) {
    const int count = content.Count();
    for (int step = 0; start >= 0 && step < count; ++step) {
        const int index = (start + step) % count;
        const std::wstring entry = content.Text(index);
        if (EqualsIgnoreCase(std::wstring_view(entry).substr(0, text.size()), text)) return index;
    }
    return -1;
}

}  // namespace tessary

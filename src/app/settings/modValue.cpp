#include "app/settings/modValue.h"

namespace tessary {

ProcessValues& Values() {
    static ProcessValues values;
    return values;
}

}  // namespace tessary

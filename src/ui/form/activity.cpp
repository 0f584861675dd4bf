#include "ui/form/activity.h"

namespace tessary {

Activity& CurrentActivity() {
    static Activity activity;
    return activity;
}

}  // namespace tessary

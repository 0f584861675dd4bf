// Mutexes between copies of the program.
#pragma once

#include "app/base/handles.h"

namespace tessary {

// The mutex of that name, made when there is none, for whoever asks for it: the settings of a user
// are the same in all of his sessions, and the program's folder is all users'. `name` begins with
// `Global\`. Empty when the system refuses it.
UniqueMutex SharedMutex(const wchar_t* name);

}  // namespace tessary

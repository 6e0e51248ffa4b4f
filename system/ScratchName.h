// The names of the folders in which the program and its tools work: whoever walks through folders
// of the user's must know them, for one may lie in what is to be archived.
#pragma once

#include <string>
#include <string_view>

namespace ScratchName
{

// What they begin with; in a folder of the user's, hidden by a dot before it.
constexpr std::string_view prefix = "org.parcelo.Parcelo";

// Whether a name begins like that.
[[nodiscard]] bool isOne(std::string_view name);

// Whether it is wholly as we make them: the prefix, a process number and, mostly, six letters; in a
// folder of the user's with the dot and always with the letters, so that a folder which a person
// has called nearly like ours is not taken for one.
[[nodiscard]] bool isTemporary(std::string_view name);
[[nodiscard]] bool isPrivate(std::string_view name);

// Whether this is such a folder and a process holds its lock now: what is in it is the doing of a
// job that is under way, and nobody's file. One that nobody holds is like any other folder; where
// nothing can be locked, a private one counts as held.
[[nodiscard]] bool isInUse(int inFolder, const std::string& name);

} // namespace ScratchName

#pragma once

#include <filesystem>

namespace zemhost {

// Whether a file of the player, or a folder, can be read from its disk, at once or after a moment: a player
// whose cable was touched comes back by itself.
enum class Answer { AtOnce, AfterAMoment, None };
Answer answerOf(const std::filesystem::path &file);

}  // namespace zemhost

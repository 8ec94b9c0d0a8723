#pragma once

// What the commands' options are made of.

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "zemhost/commands/Commands.h"
#include "zemhost/output/TextEncoder.h"

namespace zemhost {

// What the command that was asked for does; returns the exit status.
using Action = std::function<int()>;

// A command, and the arguments that its options fill.
template <typename Arguments>
struct Command {
  CLI::App *app;
  std::shared_ptr<Arguments> arguments;

  CLI::App *operator->() const { return app; }
};

// Throws CLI::ValidationError for options that do not go together, and fills in what they imply.
template <typename Arguments>
using Check = void (*)(const CLI::App &command, Arguments &arguments);

// The places that a command takes, in their order; empty where none of them may be left out.
template <typename Arguments>
std::vector<std::string *> placesOf(Arguments &arguments) {
  return {&arguments.path};
}
template <typename Arguments>
requires requires(Arguments arguments) { arguments.destination; }
std::vector<std::string *> placesOf(Arguments &arguments) {
  return {&arguments.path, &arguments.destination};
}
inline std::vector<std::string *> placesOf(PlaylistArguments &arguments) {
  return {&arguments.path, &arguments.playlist};
}
inline std::vector<std::string *> placesOf(CompareArguments &arguments) {
  return {&arguments.a, &arguments.b};
}
inline std::vector<std::string *> placesOf(VerifyArguments & /*arguments*/) { return {}; }
inline std::vector<std::string *> placesOf(CallArguments & /*arguments*/) { return {}; }
inline std::vector<std::string *> placesOf(ClassArguments & /*arguments*/) { return {}; }

// Where the first place is left out, the mounted player takes it, and is named on standard error. Throws
// CLI::ValidationError when a place is missing, and when there is no such player or several.
void settlePlaces(const CLI::App &command, const std::vector<std::string *> &places);

// Adds a command. When the command line names it, its work is left in `action`, which must outlive the
// parsing.
template <typename Arguments>
Command<Arguments> addCommand(CLI::App &program, Action &action, const char *name, const char *description,
                              int (*run)(const Arguments &), Check<Arguments> check = nullptr) {
  Command<Arguments> command{program.add_subcommand(name, description), std::make_shared<Arguments>()};
  command->callback([command, run, check, &action] {
    if (check != nullptr) check(*command.app, *command.arguments);
    settlePlaces(*command.app, placesOf(*command.arguments));
    action = [run, arguments = command.arguments] { return run(*arguments); };
  });
  return command;
}

// Refuses an empty text in place of a name.
CLI::Validator notEmpty();

// The argument PATH, which every command that reads a database takes.
CLI::Option *addPath(CLI::App &command, std::string &path);

// A place behind one that may be left out. The parser cannot know that it is required, so settlePlaces() sees
// to it.
CLI::Option *addPlace(CLI::App &command, const char *name, std::string &place, const char *description);

void addEncoding(CLI::App &command, std::string &encoding);
void addJson(CLI::App &command, bool &json);

template <typename Arguments>
void checkJsonEncoding(const CLI::App & /*command*/, Arguments &arguments) {
  if (arguments.json && !isUtf8Name(arguments.encoding))
    throw CLI::ValidationError("--encoding", "JSON is always UTF-8");
}

// Commands with options of their own file.
void addExport(CLI::App &program, Action &action);
void addCompare(CLI::App &program, Action &action);
void addDuplicates(CLI::App &program, Action &action);
void addReport(CLI::App &program, Action &action);
void addStats(CLI::App &program, Action &action);

}  // namespace zemhost

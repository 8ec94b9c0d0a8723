#pragma once

// The commands of the program. Each lives in a file of its own and is listed once below and in main.cpp.

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace zemhost {

// What the command that was asked for does; returns the exit status. Throws HostError for bad input.
using Action = std::function<int()>;

// Adds the argument PATH, which every command that reads a database takes.
void addPathArgument(CLI::App &command, std::string &path);

// Adds the option --encoding and returns it; the name it gives stands in `encoding`, "UTF-8" at first.
CLI::Option *addEncodingOption(CLI::App &command, std::string &encoding);

// Throws CLI::ValidationError when JSON is to be written in another encoding than UTF-8.
void checkJsonEncoding(bool json, const std::string &encoding);

// What a command takes that shows texts of a database and nothing more.
struct ListingArguments {
  std::string path;
  std::string encoding;
};
void addListingArguments(CLI::App &command, ListingArguments &arguments);

// Each adds its command to the program; when the command line names it, it leaves its work in `action`, which
// must outlive the program's parsing.
void addSongsCommand(CLI::App &program, Action &action);
void addPlaylistsCommand(CLI::App &program, Action &action);
void addPlaylistCommand(CLI::App &program, Action &action);
void addInfoCommand(CLI::App &program, Action &action);
void addCheckCommand(CLI::App &program, Action &action);
void addExportCommand(CLI::App &program, Action &action);
void addRescueCommand(CLI::App &program, Action &action);
void addCompareCommand(CLI::App &program, Action &action);
void addDuplicatesCommand(CLI::App &program, Action &action);
void addCallCommand(CLI::App &program, Action &action);
void addClassCommand(CLI::App &program, Action &action);

}  // namespace zemhost

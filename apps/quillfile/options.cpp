#include "apps/quillfile/options.h"

#include <CLI/CLI.hpp>
#include <array>
#include <iostream>

namespace quillfile::app {
namespace {

// What a command takes besides the general options.
enum class Takes { nothing, folder, items, one_item, watch, monitor, responses, files };

struct Command {
  const char* name;
  Takes takes;
  const char* does;
};

constexpr std::array<Command, 12> commands = {{
    {"folders", Takes::nothing, "List the folders: name, role, items, unread, monitored"},
    {"list", Takes::folder, "List the items of a folder (default: the Inbox), oldest first"},
    {"show", Takes::one_item, "Show one item: headers, body, attachments, links"},
    {"save", Takes::items, "Save the attachments of the items named, else of the whole folder"},
    {"watch", Takes::watch, "Handle mail as it arrives, is sent and is deleted, until stopped"},
    {"monitor", Takes::monitor, "Add folders to those that watch processes, or take them out"},
    {"forward", Takes::responses,
     "Forward items, their saved files attached again; the drafts are left in Drafts"},
    {"reply", Takes::responses, "Reply to items, without the links; the drafts are left in Drafts"},
    {"reply-all", Takes::responses, "The same to everybody"},
    {"delete", Takes::items, "Move items to Deleted Items, and ask about their saved files"},
    {"restore", Takes::items, "Put saved files back into their messages and take the links out"},
    {"import", Takes::files, "Put .eml, .msg, .tnef and mbox files into the mail store"},
}};

void addArguments(CLI::App& app, Takes takes, Options& options) {
  const bool inFolder = takes == Takes::folder || takes == Takes::items || takes == Takes::one_item ||
                        takes == Takes::responses || takes == Takes::files;
  if (inFolder)
    app.add_option("--folder", options.folder, "The folder, as `folders` names it")->type_name("FOLDER");
  switch (takes) {
    case Takes::nothing:
    case Takes::folder:
      break;
    case Takes::one_item:
      app.add_option("item", options.arguments, "Its number in `list`, or its id")
          ->required()
          ->expected(1)
          ->type_name("ITEM");
      break;
    case Takes::items:
      app.add_option("items", options.arguments, "Numbers in `list`, ranges of them (3-7), or ids")
          ->type_name("ITEM");
      break;
    case Takes::responses:
      app.add_flag("--open", options.open, "As from the item's own window, not from the list");
      app.add_option("items", options.arguments, "Numbers in `list`, ranges of them (3-7), or ids")
          ->required()
          ->type_name("ITEM");
      break;
    case Takes::watch:
      app.add_flag("--once", options.once, "Handle what has come since the last run, then end");
      app.add_option("--poll", options.poll,
                     "Look every so many seconds, where the file system does not tell")
          ->check(CLI::Range(1, 86400))
          ->type_name("SECONDS");
      break;
    case Takes::monitor:
      app.add_flag("--remove", options.remove, "Take the folders out");
      app.add_option("folders", options.arguments, "Folders, as `folders` names them")
          ->required()
          ->type_name("FOLDER");
      break;
    case Takes::files:
      app.add_option("files", options.arguments, "Files")->required()->type_name("FILE");
      break;
  }
}

void addSettings(CLI::App& app, Options& options) {
  auto* settings = app.add_subcommand("settings", "List, read and change the settings");
  const auto add = [&](const char* name, const char* does) {
    auto* command = settings->add_subcommand(name, does);
    command->callback([&options, name] { options.command = std::string("settings ") + name; });
    return command;
  };
  add("list", "Every setting with its value, default and meaning");
  add("get", "The value of one")->add_option("key", options.arguments, "The key")->required()->expected(1);
  add("set", "Change one")
      ->add_option("key value", options.arguments, "The key and its new value")
      ->required()
      ->expected(2);
  add("unset", "Back to the default")
      ->add_option("key", options.arguments, "The key")
      ->required()
      ->expected(1);
  settings->callback([&options] {
    if (options.command.empty()) options.command = "settings list";
  });
}

void addGeneral(CLI::App& app, Options& options) {
  app.add_option("--mail", options.mail, "The mail store: $QUILLFILE_MAIL, else ~/Maildir, else ~/Mail")
      ->type_name("DIR");
  app.add_option("--settings", options.settings,
                 "The settings: $QUILLFILE_SETTINGS, else $XDG_CONFIG_HOME/quillfile/settings.ini")
      ->type_name("FILE");
  app.add_option("--trace", options.trace, "Append the trace to this file; - is standard error")
      ->type_name("FILE");
  app.add_option_function<std::string>(
         "--answer", [&](const std::string& word) { options.answer = mailbox::presetAnswer(word); },
         "Answers every prompt: yes, yes-to-all, no, no-to-all or cancel")
      ->check(CLI::IsMember({"yes", "yes-to-all", "no", "no-to-all", "cancel"}))
      ->type_name("WORD");
  app.add_flag("--json", options.json, "One JSON document on standard output, and nothing else there");
  app.add_flag("--quiet", options.quiet, "No progress, and no message on success");
  app.set_version_flag("--version", "quillfile " QUILLFILE_VERSION);
}

// The parser's own word for a missing command does not tell it from one that does not exist.
std::string reason(const CLI::App& app, const CLI::ParseError& error) {
  if (!app.get_subcommands().empty()) return error.what();
  for (const auto& word : app.remaining())
    if (!word.starts_with('-')) return "There is no command " + word + ".";
  return app.remaining().empty() && error.get_name() == "RequiredError" ? "A command is missing."
                                                                        : error.what();
}

}  // namespace

std::optional<Options> parseOptions(int argc, char** argv, int& status) {
  Options options;
  CLI::App app{"Quillfile saves the attachments of mail to folders, and leaves a link behind.", "quillfile"};
  app.require_subcommand(1);
  app.fallthrough();  // general options may stand behind the command too
  addGeneral(app, options);
  for (const Command& command : commands) {
    auto* added = app.add_subcommand(command.name, command.does);
    added->callback([&options, &command] { options.command = command.name; });
    addArguments(*added, command.takes, options);
  }
  addSettings(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    app.exit(success);
    status = done;
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    std::cerr << "quillfile: " << reason(app, error)
              << "\nRun `quillfile --help` to see the commands and options.\n";
    status = wrong_command_line;
    return std::nullopt;
  }
  return options;
}

}  // namespace quillfile::app

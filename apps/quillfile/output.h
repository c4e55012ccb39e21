// What commands print: tables and sentences for people, or one JSON document.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/quillfile/options.h"
#include "hosts/mailbox/engine/run_report.h"

namespace quillfile::app {

using Json = nlohmann::ordered_json;

// Prints a document and a line end.
void printJson(const Json& document);

// Rows in columns, as wide as their widest cell, the last one free; numbers in columns named in `right` stand
// right.
void printTable(const std::vector<std::vector<std::string>>& rows,
                const std::vector<std::size_t>& right = {});

// "1 file", "2 files".
std::string counted(std::size_t count, const char* one, const char* many);

// The report of a run, field by field.
Json reportJson(const mailbox::RunReport& report);

// Prints how a run ended, in the form that the options ask for, and gives the exit status.
int printReport(const Options& options, const mailbox::RunReport& report);

// Prints an error as it happens, on standard error.
void printError(const mailbox::ErrorEntry& error);

// How many columns a text takes on a terminal.
std::size_t columnsOf(const std::string& utf8);

}  // namespace quillfile::app

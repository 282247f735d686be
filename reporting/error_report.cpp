// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#include "reporting/error_report.h"

#include <fmt/format.h>

#include <new>

#include "base/errors.h"
#include "reporting/interaction.h"

namespace kestrel {

namespace {

using base::RuntimeError;

thread_local bool t_reporting = false;

std::string detail_block(std::int32_t number, std::string_view description) {
    return fmt::format("\r\nError Number \r\n\t{}\r\nDescription\r\n\t{}\r\n\r\n", number, description);
}

void show_in_message_box(std::string_view entry, std::string_view description) {
    reporting::current_interaction().beep();
    reporting::current_interaction().message_box(
        {fmt::format(
             "An error has occured in the application.   Record the call stack sequence\r\nand the description of the error.\r\n\r\nError Call Stack Sequence \r\n\t{}\r\n{}",  // sic
             entry, description),
         "Unexpected Program Error", reporting::Icon::exclamation, reporting::Buttons::ok});
}

/// What is in flight, with number and description, whatever its type.
RuntimeError current_error() {
    try {
        throw;
    } catch (const RuntimeError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return {base::kOutOfMemory, "Out of memory", "Kestrel", 0};
    } catch (const std::exception& error) {
        return {base::kLibraryFailure, error.what(), "Kestrel", 0};
    } catch (...) {
        return {base::kLibraryFailure, "Unspecified error", "Kestrel", 0};
    }
}

}  // namespace

std::string ErrorLine(int line_number) {
    return line_number == 0 ? std::string() : fmt::format("Line : {}", line_number);
}

void ErrorReport(Show show, std::string_view entry, std::int32_t number, std::string_view source,
                 std::string_view description, int mode, bool pass_on) {
    const std::string text = t_reporting ? std::string(description) : detail_block(number, description);
    if (show == Show::no) {
        t_reporting = true;
        throw RuntimeError(number, fmt::format("\t{}\r\n{}", entry, text), std::string(source), 0);
    }
    t_reporting = false;
    if (mode == kReportInCallStackWindow) {
        reporting::current_interaction().show_call_stack(
            fmt::format("Record Call Stack Sequence - Bottom line is error line.\r\n\r\n\t{}\r\n{}", entry, text));
        return;
    }
    show_in_message_box(entry, text);
    if (mode == kReportInMessageBoxAndPassOn && pass_on) {
        throw RuntimeError(number, fmt::format("\t{}\r\n{}", entry, text), std::string(source), 0);
    }
}

void report_current(const Handler& handler) {
    const RuntimeError error = current_error();
    const std::string entry = fmt::format("{} {} {}", handler.procedure, handler.module, ErrorLine(error.line()));
    ErrorReport(handler.show, entry, error.number(), error.source(), error.description(), kReportInCallStackWindow);
}

void reset_reporting_flag() {
    t_reporting = false;
}

}  // namespace kestrel

// SPDX-FileCopyrightText: The Kestrel developers
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// \file
/// The call-stack error reporter, and the guard that makes one handler a procedure:
///
///     bool clsISGetLCArea::CalculateAreas()
///     try {
///         ...
///         return true;
///     } catch (...) {
///         return reported<bool>({"CalculateAreas", kModule});
///     }
///
/// The outermost procedure shows the report; a procedure with Show::no puts its own line on top and passes the error to
/// its caller. Procedure and module are literals, because what is reported is not always the name in the code.
namespace kestrel {

enum class Show : std::int16_t { no = 0, yes = -1 };

/// How a report is shown.
enum ReportMode : int {
    kReportInMessageBox = 2,
    kReportInMessageBoxAndPassOn = 3,
    kReportInCallStackWindow = 4,
};

/// The procedure whose handler reports.
struct Handler {
    std::string_view procedure;
    std::string_view module;
    Show show = Show::yes;
};

/// "Line : 45"; empty for 0, a procedure whose failing line is not known.
std::string ErrorLine(int line_number);

/// The reporter. It keeps one flag a thread: an error is travelling up the procedures.
/// \param show whether the report ends here and is shown; otherwise the error is thrown on.
/// \param entry "procedure module line-text".
/// \param description the error's own description where it arose, and what the procedures below have made of it
///        further up.
/// \param pass_on with kReportInMessageBoxAndPassOn: throw the error on after showing it.
void ErrorReport(Show show, std::string_view entry, std::int32_t number, std::string_view source,
                 std::string_view description, int mode, bool pass_on = false);

/// Reports the exception in flight for `handler`; called from a catch block only. Throws it on with Show::no.
void report_current(const Handler& handler);

/// report_current(), then the procedure's empty result.
template <typename Result>
[[nodiscard]] Result reported(const Handler& handler) {
    report_current(handler);
    return Result();
}

/// Forgets that an error is travelling, so that one test cannot disturb the next.
void reset_reporting_flag();

}  // namespace kestrel

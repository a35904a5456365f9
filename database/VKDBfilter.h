#pragma once

/// A three-way choice in the filters of lists. What "enabled" means is told where the filter is set.
enum FltEnabled : int {
    FltEither = 0,      ///< no filter
    FltOnlyEnabled = 1, ///< only those
    FltOnlyDisabled = 2 ///< only the others
};

/// Which of a user group's rights on departments a filter asks for.
enum DeptPerm : int;

/// Which names a list shows by their first letter.
enum FltNameLetter : int {
    FltAnyLetter = 0,
    FltOnlyLetters = 1, ///< A to Z
    FltNoLetters = 2    ///< anything else, such as digits
};

// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A source for the targets that precompile headers for others. It needs nothing of its own.

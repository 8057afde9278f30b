// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

void main() { }

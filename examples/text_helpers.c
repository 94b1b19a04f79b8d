/* SPDX-License-Identifier: Apache-2.0 */
/* The library's rules for text in buffers of fixed size: never beyond the count, and a cut text is a failure. */
#include <quarlin/quarlin.h>

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* Prints a wide text on a console or into a file, as UTF-8. */
static void Show(const char* label, const wchar_t* text) {
    char narrow[256];
    int bytes = 0;
    if (QLSTR_WideToNarrow(narrow, (int)sizeof narrow, &bytes, text) == QLERR_OK) {
        printf("%s: \"%s\"\n", label, narrow);
    }
}

/* A printing function of the application's own, made of the one that takes an argument list. */
static int Format(wchar_t* text, int size, const wchar_t* format, ...) {
    int written = 0;
    va_list arguments;
    va_start(arguments, format);
    const QLerr code = QLSTR_StrVarPrintf(text, size, &written, format, arguments);
    va_end(arguments);
    return code == QLERR_OK ? written : -1;
}

int main(void) {
    wchar_t wide[32];
    int count = 0;

    /* "caf" and e with an acute accent: five bytes, four characters; the counts include the terminator. */
    const char* cafe = "caf\xC3\xA9";
    if (QLSTR_NarrowToWide(NULL, 0, &count, cafe) != QLERR_OK) {
        return EXIT_FAILURE;
    }
    printf("Needed: %d wide characters for %d bytes\n", count, (int)strlen(cafe) + 1);
    if (QLSTR_NarrowToWide(wide, 32, &count, cafe) != QLERR_OK) {
        return EXIT_FAILURE;
    }
    Show("Converted", wide);

    /* A text that does not fit leaves its beginning behind, with a terminator, and the call fails. */
    if (QLSTR_StrCopy(wide, 4, L"abcd") == QLERR_OK) {
        return EXIT_FAILURE;
    }
    Show("Cut", wide);
    char narrow[8];
    if (QLSTR_StrCopyAnsi(narrow, (int)sizeof narrow, "fits") != QLERR_OK) {
        return EXIT_FAILURE;
    }
    printf("Copied: \"%s\"\n", narrow);

    /* In a wide format, %s takes a wide text. The count of characters is given by QLSTR_StrVarPrintf alone. */
    if (QLSTR_StrPrintf(wide, 32, NULL, L"%s has %d", L"track", 3) != QLERR_OK) {
        return EXIT_FAILURE;
    }
    Show("Printed", wide);
    const int written = Format(wide, 32, L"%d", 42);
    printf("Written: %d characters\n", written);
    return written < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

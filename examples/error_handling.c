/* SPDX-License-Identifier: Apache-2.0 */
/* How a failing call is told, and how long its text stays. */
#include <quarlin/quarlin.h>

#include <stdio.h>
#include <stdlib.h>

/* Enough for every text of the library; with a buffer that is too small the call would raise a C++ exception, which a
 * C program cannot catch. */
enum {
    kTextSize = 1024
};

static void ShowLastError(const char* when) {
    char text[kTextSize];
    const QLerr code = QLAPI_GetLastError(text, kTextSize);
    printf("%s: code %d, \"%s\"\n", when, (int)code, text);
}

int main(void) {
    double speed = 0.0;
    int size = 0;

    /* Codes decide, texts explain: branch on the code, show the text to a person. */
    if (QLGPS_GetSpeed(&speed) == QLERR_INVALID_STATE) {
        ShowLastError("After a failure");
    }
    ShowLastError("Asked again");

    /* A later failure takes the place of an earlier one. */
    if (QLGPS_GetSpeed(&speed) == QLERR_OK || QLGPS_Initialize(0) == QLERR_OK) {
        return EXIT_FAILURE;
    }
    ShowLastError("After two failures");

    /* A success erases what an earlier failure left. */
    if (QLGPS_GetSpeed(&speed) == QLERR_OK || QLLIB_GetSDKVersion(NULL, &size) != QLERR_OK) {
        return EXIT_FAILURE;
    }
    ShowLastError("After a failure and a success");

    /* When Windows itself failed, its own code and text follow on a second line. */
    char cut[4];
    if (QLSTR_StrCopyAnsi(cut, (int)sizeof cut, "too long") != QLERR_INTERNAL_ERROR) {
        return EXIT_FAILURE;
    }
    ShowLastError("After a failure of the system");
    return EXIT_SUCCESS;
}

/* SPDX-License-Identifier: Apache-2.0 */
/* Which release of the library this is, and which machine it runs on. */
#include <quarlin/quarlin.h>

#include <stdio.h>
#include <stdlib.h>

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error %d, %s\n", what, (int)code, text);
    return EXIT_FAILURE;
}

static void PrintWide(const char* label, const wchar_t* text) {
    char narrow[1024];
    int count = 0;
    if (QLSTR_WideToNarrow(narrow, (int)sizeof narrow, &count, text) == QLERR_OK) {
        printf("%s: %s\n", label, narrow);
    }
}

int main(void) {
    /* Texts of unknown length are fetched by two calls: the first asks for the size, terminator included. */
    int size = 0;
    if (QLLIB_GetSDKVersion(NULL, &size) != QLERR_OK) {
        return Fail("QLLIB_GetSDKVersion");
    }
    wchar_t* version = calloc((size_t)size, sizeof *version);
    if (version == NULL) {
        return EXIT_FAILURE;
    }
    if (QLLIB_GetSDKVersion(version, &size) != QLERR_OK) {
        free(version);
        return Fail("QLLIB_GetSDKVersion");
    }
    PrintWide("Library", version);
    free(version);

    /* Two sources name the machine. Not every firmware gives a name, and that is no reason to stop. */
    wchar_t product[260];
    size = 260;
    if (QLLIB_GetModelNumber(product, &size) == QLERR_OK) {
        PrintWide("Firmware's product name", product);
    } else {
        printf("Firmware's product name: none\n");
    }

    /* 250 bytes hold every model. This call asks Windows management and takes a while, once per process. */
    char model[250];
    if (QLMISC_GetModelNumber(model, (int)sizeof model, NULL) != QLERR_OK) {
        return Fail("QLMISC_GetModelNumber");
    }
    printf("Management's model: %s\n", model);
    return EXIT_SUCCESS;
}

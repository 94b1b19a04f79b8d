/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Which tags are here? Runs one inventory round, prints every tag with the beginning of its TID memory, and stops.
 *
 *     uhf_inventory.exe
 *
 * Exit status: 0 with a tag, 1 after an error, 3 when the reader sees no tag.
 */
#include <quarlin/quarlin.h>

#include <stdio.h>
#include <string.h>

enum {
    kFound = 0,
    kFailed = 1,
    kNoTag = 3
};

enum {
    kMaxTags = 64,
    kMaxIdentifier = 64,
    kProtocolControlSize = 2,
    kTidBank = 2,
    kTidWords = 2
};

typedef struct Tag {
    unsigned char identifier[kMaxIdentifier];
    int length;
    int signal;
} Tag;

static int Fail(const char* what) {
    char text[1024];
    const QLerr code = QLAPI_GetLastError(text, (int)sizeof text);
    fprintf(stderr, "%s: error 0x%X, %s\n", what, (unsigned int)code, text);
    return kFailed;
}

static void PrintBytes(const unsigned char* bytes, int count) {
    for (int i = 0; i < count; ++i) {
        printf("%02X", bytes[i]);
    }
}

/* One round: the first tag begins it, each further call gives the next. The size of the buffer has to be set again for
 * every call, because the length of the identifier takes its place. */
static QLerr ListTags(void* reader, Tag* tags, int* count) {
    *count = 0;
    while (*count < kMaxTags) {
        Tag* tag = &tags[*count];
        memset(tag, 0, sizeof *tag);
        tag->length = kMaxIdentifier;
        char* const buffer = (char*)tag->identifier;
        const QLerr code = *count == 0 ? QLUHFRFID_GetFirstTag(reader, buffer, &tag->length, &tag->signal)
                                       : QLUHFRFID_GetNextTag(reader, buffer, &tag->length, &tag->signal);
        if (code == QLERR_UHFRFID_NO_TAGS) {
            return QLERR_OK;
        }
        if (code != QLERR_OK) {
            return code;
        }
        if (tag->length == kMaxIdentifier) {
            /* Untouched: an identifier of no bytes. A reply has no room for one this long. */
            tag->length = 0;
        }
        ++*count;
    }
    return QLERR_OK;
}

/* A tag answers a read once it is selected. One that has left the field meanwhile is no reason to stop. */
static void PrintTid(void* reader, Tag* tag) {
    unsigned char noPassword[4] = {0, 0, 0, 0};
    unsigned char words[2 * kTidWords] = {0, 0, 0, 0};
    if (QLUHFRFID_SelectTag(reader, tag->identifier, (unsigned int)tag->length) == QLERR_OK &&
        QLUHFRFID_ReadTag(reader, kTidBank, 0, noPassword, 4, words, kTidWords) == QLERR_OK) {
        printf(", TID ");
        PrintBytes(words, (int)sizeof words);
    } else {
        char text[1024];
        QLAPI_GetLastError(text, (int)sizeof text);
        printf(", TID not read: %s", text);
    }
}

static int PrintTags(void* reader) {
    static Tag tags[kMaxTags];
    int count = 0;
    if (ListTags(reader, tags, &count) != QLERR_OK) {
        return Fail("The inventory");
    }
    for (int i = 0; i < count; ++i) {
        if (tags[i].length <= kProtocolControlSize) {
            printf("EPC -");
        } else {
            printf("EPC ");
            PrintBytes(tags[i].identifier + kProtocolControlSize, tags[i].length - kProtocolControlSize);
        }
        printf(", signal %d", tags[i].signal);
        PrintTid(reader, &tags[i]);
        printf("\n");
    }
    if (count == 0) {
        fprintf(stderr, "The reader sees no tag.\n");
        return kNoTag;
    }
    return kFound;
}

int main(void) {
    void* reader = NULL;
    if (QLUHFRFID_OpenReader(&reader) != QLERR_OK) {
        return Fail("QLUHFRFID_OpenReader");
    }
    int result = PrintTags(reader);
    if (QLUHFRFID_CloseReader(reader) != QLERR_OK && result == kFound) {
        result = Fail("QLUHFRFID_CloseReader");
    }
    return result;
}

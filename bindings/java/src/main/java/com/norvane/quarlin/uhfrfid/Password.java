// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

/** Passwords of tags: numbers for applications, bytes for the native library. */
final class Password {
    private Password() {
    }

    /** The number as it lies in memory: 0x11223344 is 44 33 22 11. */
    static byte[] bytes(int password) {
        return new byte[] {(byte) password, (byte) (password >> 8), (byte) (password >> 16), (byte) (password >> 24)};
    }
}

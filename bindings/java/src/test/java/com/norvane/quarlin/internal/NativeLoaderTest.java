// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.internal;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotSame;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.Library;
import com.norvane.quarlin.bcr.BarcodeScanner;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.condition.DisabledOnOs;
import org.junit.jupiter.api.condition.OS;
import org.junit.jupiter.api.function.Executable;

/** Where the library cannot be loaded, whatever lies on the library path. */
@DisabledOnOs(value = OS.WINDOWS, disabledReason = "the library can be loaded here")
class NativeLoaderTest {
    @Test
    void theFailureIsRepeatedWithTheFirstOneBeneath() {
        UnsatisfiedLinkError first = assertThrows(UnsatisfiedLinkError.class, NativeLoader::load);
        UnsatisfiedLinkError second = assertThrows(UnsatisfiedLinkError.class, NativeLoader::load);
        UnsatisfiedLinkError third = assertThrows(UnsatisfiedLinkError.class, NativeLoader::load);
        assertTrue(first.getMessage().startsWith("qlsdk.dll was not loaded:\n  "), first.getMessage());
        assertEquals(first.getMessage(), second.getMessage());
        assertNotSame(second, third);
        assertSame(second.getCause(), third.getCause());
        assertTrue(second.getCause() instanceof UnsatisfiedLinkError);
    }

    @Test
    void theFriendlyEntrancesTellItEachTime() {
        for (int time = 1; time <= 2; ++time) {
            assertTold(Library::version);
            assertTold(Library::modelNumber);
            assertTold(BarcodeScanner::open);
            assertTold(BarcodeScanner::devices);
            assertTold(() -> BarcodeScanner.allowExternalDevices(true));
        }
    }

    private static void assertTold(Executable call) {
        UnsatisfiedLinkError error = assertThrows(UnsatisfiedLinkError.class, call);
        assertTrue(error.getMessage().contains("com.norvane.quarlin.library"), error.getMessage());
    }
}

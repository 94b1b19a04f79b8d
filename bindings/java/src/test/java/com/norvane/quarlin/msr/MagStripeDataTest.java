// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.msr;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class MagStripeDataTest {
    private static final int BUFFER_SIZE = 112;

    private static MagStripeTrackData track(String text, int length) {
        return new MagStripeTrackData(BUFFER_SIZE, length,
                Arrays.copyOf(text.getBytes(StandardCharsets.ISO_8859_1), BUFFER_SIZE));
    }

    private static MagStripeTrackData track(String text) {
        return track(text, text.length());
    }

    @Test
    void theNativeLibraryFindsItsConstructors() throws Exception {
        assertNotNull(MagStripeTrackData.class.getDeclaredConstructor(int.class, int.class, byte[].class));
        assertNotNull(MagStripeData.class.getDeclaredConstructor(MagStripeTrackData[].class,
                MagStripeTrackData[].class, byte[].class, boolean.class, boolean.class));
    }

    @Test
    void aTrackGivesTheBytesInUse() {
        MagStripeTrackData track = track(";1234=99?");
        assertEquals(BUFFER_SIZE, track.getBufferSize());
        assertEquals(9, track.getLength());
        assertEquals(BUFFER_SIZE, track.getBuffer().length);
        assertArrayEquals(";1234=99?".getBytes(StandardCharsets.US_ASCII), track.getData());
        assertEquals(";1234=99?", track.getText());
    }

    @ParameterizedTest(name = "a length of {0} gives {1} bytes")
    @CsvSource({"-128, 0", "-1, 0", "0, 0", "1, 1", "112, 112", "113, 112", "127, 112"})
    void lengthsThatLieAreHeldAtTheBuffer(int told, int used) {
        MagStripeTrackData track = track("%B1", told);
        assertEquals(told, track.getLength());
        assertEquals(used, track.getData().length);
        assertEquals(used, track.getText().length());
    }

    @Test
    void everyByteOfATrackIsACharacter() {
        byte[] bytes = new byte[256];
        for (int i = 0; i < bytes.length; ++i) {
            bytes[i] = (byte) i;
        }
        String text = new MagStripeTrackData(256, 256, bytes).getText();
        assertEquals(256, text.length());
        for (int i = 0; i < bytes.length; ++i) {
            assertEquals(i, text.charAt(i));
        }
    }

    @Test
    void aTrackDoesNotShareItsBytes() {
        byte[] bytes = {1, 2, 3};
        MagStripeTrackData track = new MagStripeTrackData(3, 3, bytes);
        bytes[0] = 9;
        track.getBuffer()[1] = 9;
        track.getData()[2] = 9;
        assertArrayEquals(new byte[] {1, 2, 3}, track.getBuffer());
        assertArrayEquals(new byte[] {1, 2, 3}, track.getData());
    }

    @Test
    void aSwipeDoesNotShareItsArrays() {
        MagStripeTrackData first = track("%B1");
        MagStripeTrackData masked = track("%B*");
        MagStripeTrackData[] tracks = {first};
        MagStripeTrackData[] maskedTracks = {masked};
        byte[] raw = {0, 7};
        MagStripeData swipe = new MagStripeData(tracks, maskedTracks, raw, true, false);
        tracks[0] = null;
        maskedTracks[0] = null;
        raw[1] = 0;
        swipe.getTracks()[0] = null;
        swipe.getMaskedTracks()[0] = null;
        swipe.getRaw()[1] = 0;
        assertSame(first, swipe.getTracks()[0]);
        assertSame(masked, swipe.getMaskedTracks()[0]);
        assertArrayEquals(new byte[] {0, 7}, swipe.getRaw());
        assertTrue(swipe.isEncrypted());
        assertFalse(swipe.isValid());
    }

    @Test
    void textsForPeopleTellNothingOfTheCard() {
        MagStripeTrackData track = track(";4761739001010010=2512?");
        MagStripeData swipe = new MagStripeData(new MagStripeTrackData[] {track}, new MagStripeTrackData[] {track},
                new byte[888], false, true);
        assertEquals("23 bytes", track.toString());
        assertEquals("valid swipe, clear", swipe.toString());
    }
}

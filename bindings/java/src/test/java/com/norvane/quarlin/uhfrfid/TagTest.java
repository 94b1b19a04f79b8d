// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.uhfrfid;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;

import java.util.Locale;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class TagTest {
    private static byte[] bytes(int... values) {
        byte[] bytes = new byte[values.length];
        for (int i = 0; i < values.length; ++i) {
            bytes[i] = (byte) values[i];
        }
        return bytes;
    }

    @Test
    void anIdentifierIsProtocolControlAndEpc() {
        Tag tag = new Tag(bytes(0x80, 0xF1, 0xE2, 0x00, 0x34, 0xAB, 0x0C, 0xFF), -45);
        assertEquals(0x80F1, tag.protocolControl());
        assertEquals("E20034AB0CFF", tag.epc());
        assertEquals(-45, tag.signal());
        assertEquals("E20034AB0CFF (signal -45)", tag.toString());
    }

    @Test
    void theEpcIsTheSameInEveryLanguage() {
        Locale before = Locale.getDefault();
        Locale.setDefault(new Locale("tr", "TR"));
        try {
            assertEquals("1F2E", new Tag(bytes(0, 0, 0x1F, 0x2E), 0).epc());
        } finally {
            Locale.setDefault(before);
        }
    }

    @Test
    void shortIdentifiersHaveNoEpc() {
        assertEquals("", new Tag(bytes(), 0).epc());
        assertEquals(0, new Tag(bytes(), 0).protocolControl());
        assertEquals("", new Tag(bytes(0x30), 0).epc());
        assertEquals(0, new Tag(bytes(0x30), 0).protocolControl());
        assertEquals("", new Tag(bytes(0x30, 0x01), 0).epc());
        assertEquals(0x3001, new Tag(bytes(0x30, 0x01), 0).protocolControl());
    }

    @Test
    void aTagDoesNotShareItsBytes() {
        byte[] identifier = bytes(0x30, 0, 1);
        Tag tag = new Tag(identifier, 0);
        identifier[2] = 9;
        tag.identifier()[2] = 9;
        assertArrayEquals(bytes(0x30, 0, 1), tag.identifier());
    }

    @Test
    void tagsAreEqualWhenTheirIdentifiersAre() {
        Tag near = new Tag(bytes(0x30, 0, 1), -20);
        Tag far = new Tag(bytes(0x30, 0, 1), -70);
        assertEquals(near, far);
        assertEquals(near.hashCode(), far.hashCode());
        assertNotEquals(near, new Tag(bytes(0x30, 0, 2), -20));
        assertNotEquals(near, null);
    }

    @ParameterizedTest(name = "{0} is bank {1}")
    @CsvSource({"RESERVED, 0", "EPC, 1", "TID, 2", "USER, 3"})
    void banksHaveTheNumbersOfTheReader(MemoryBank bank, int number) {
        assertEquals(number, bank.number());
    }

    @Test
    void aPasswordIsGivenLeastSignificantByteFirst() {
        assertArrayEquals(bytes(0x44, 0x33, 0x22, 0x11), Password.bytes(0x11223344));
        assertArrayEquals(bytes(0x0D, 0xF0, 0xAD, 0xDE), Password.bytes(0xDEADF00D));
        assertArrayEquals(bytes(0, 0, 0, 0), Password.bytes(RfidReader.NO_PASSWORD));
    }
}

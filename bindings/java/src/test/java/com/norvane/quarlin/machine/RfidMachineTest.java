// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static com.norvane.quarlin.machine.Failures.assertRaises;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.uhfrfid.MemoryBank;
import com.norvane.quarlin.uhfrfid.RfidException;
import com.norvane.quarlin.uhfrfid.RfidReader;
import com.norvane.quarlin.uhfrfid.Tag;
import com.norvane.quarlin.uhfrfid.UhfRfidNativeBase;
import java.io.IOException;
import java.util.Arrays;
import java.util.List;
import java.util.stream.Collectors;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/** The UHF RFID reader on the HID bus, with tags in its field. */
@org.junit.jupiter.api.Tag("machine")
class RfidMachineTest {
    private static final String LABEL = "3034257BF7194E4000001A85";
    private static final String CRATE = "E2003412DC03011945000777";
    private static final int ACCESS_PASSWORD = 0xBBAA0000;
    private static final int KILL_PASSWORD = 0x1A2B3C4D;
    // The least significant byte first.
    private static final byte[] ACCESS = {0, 0, (byte) 0xAA, (byte) 0xBB};
    private static final byte[] KILL = {0x4D, 0x3C, 0x2B, 0x1A};
    private static final byte[] NONE = {0, 0, 0, 0};
    private static final int USER = 3;
    private static final String[] SCENARIO = {
        "[[device]]",
        "kind = \"rfid-reader\"",
        "name = \"rfid\"",
        "[[device.tag]]",
        "epc = \"" + LABEL + "\"",
        "tid = \"E280116020007F3C88A80001\"",
        "user = \"000102030405060708090A0B0C0D0E0F\"",
        "access_password = \"BBAA0000\"",
        "kill_password = \"1A2B3C4D\"",
        "signal = -48",
        "[[device.tag]]",
        "epc = \"" + CRATE + "\"",
        "tid = \"E28011602000544C77D00003\"",
        "user = \"C0FFEE00\"",
        "signal = -66"};

    private static Machine machine;

    @BeforeAll
    static void takeTurn() throws IOException {
        machine = new Machine();
        machine.turns().rfidReaders();
    }

    @AfterAll
    static void end() throws IOException {
        machine.close();
    }

    /** The tags as they were. */
    @BeforeEach
    void play() throws IOException {
        machine.play(SCENARIO);
    }

    /** The reader opened by native methods. */
    private static final class Opened implements AutoCloseable {
        final int handle = UhfRfidNativeBase.QLUHFRFID_OpenReader();

        Opened() throws IOException {
        }

        @Override
        public void close() throws IOException {
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_CloseReader(handle));
        }
    }

    private static byte[] bytes(String hex) {
        byte[] bytes = new byte[hex.length() / 2];
        for (int i = 0; i < bytes.length; ++i) {
            bytes[i] = (byte) Integer.parseInt(hex.substring(2 * i, 2 * i + 2), 16);
        }
        return bytes;
    }

    private static void assertRefuses(String name, Executable call) {
        RfidException thrown = assertThrows(RfidException.class, call);
        assertEquals(name, thrown.code().nativeName());
        assertEquals(name, thrown.getMessage());
    }

    @Test
    void nativeMethodsTakeAnInventory() throws IOException {
        try (Opened reader = new Opened()) {
            byte[] id = new byte[64];
            Arrays.fill(id, (byte) 0x55);
            int[] length = {64};
            int[] signal = {0};
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_GetFirstTag(reader.handle, id, length, signal));
            assertEquals(14, length[0]);
            assertEquals(-48, signal[0]);
            assertArrayEquals(bytes("3000" + LABEL), Arrays.copyOf(id, 14));
            for (int i = 14; i < id.length; ++i) {
                assertEquals(0x55, id[i]);
            }
            length[0] = 64;
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_GetNextTag(reader.handle, id, length, signal));
            assertEquals(14, length[0]);
            assertEquals(-66, signal[0]);
            assertArrayEquals(bytes("3000" + CRATE), Arrays.copyOf(id, 14));
            length[0] = 64;
            assertRefuses("QLERR_UHFRFID_NO_TAGS",
                    () -> UhfRfidNativeBase.QLUHFRFID_GetNextTag(reader.handle, id, length, signal));
            assertEquals(64, length[0]);
        }
    }

    @Test
    void nativeMethodsReadAndWriteTheSelectedTag() throws IOException {
        try (Opened reader = new Opened()) {
            byte[] id = bytes("3000" + LABEL);
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SelectTag(reader.handle, id, id.length));
            byte[] data = new byte[8];
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_ReadTag(reader.handle, USER, 2, NONE, 4, data, 3));
            assertArrayEquals(bytes("0405060708090000"), data);
            byte[] words = bytes("CAFEBABE");
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_WriteTag(reader.handle, USER, 1, ACCESS, 4, words, 2));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_ReadTag(reader.handle, USER, 0, ACCESS, 4, data, 4));
            assertArrayEquals(bytes("0001CAFEBABE0607"), data);
            assertRefuses("QLERR_UHFRFID_MEMORY_OVERRUN",
                    () -> UhfRfidNativeBase.QLUHFRFID_ReadTag(reader.handle, USER, 200, NONE, 4, data, 1));
            assertRefuses("QLERR_UHFRFID_ACCESS",
                    () -> UhfRfidNativeBase.QLUHFRFID_ReadTag(reader.handle, USER, 0, KILL, 4, data, 1));
            assertArrayEquals(bytes("0001CAFEBABE0607"), data);
        }
    }

    @Test
    void nativeMethodsLockAndKillTags() throws IOException {
        try (Opened reader = new Opened()) {
            byte[] id = bytes("3000" + LABEL);
            UhfRfidNativeBase.QLUHFRFID_SelectTag(reader.handle, id, id.length);
            assertRefuses("QLERR_UHFRFID_LOCK",
                    () -> UhfRfidNativeBase.QLUHFRFID_LockTag(reader.handle, 4, 2, NONE, 4));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_LockTag(reader.handle, 4, 2, ACCESS, 4));
            assertRefuses("QLERR_UHFRFID_MEMORY_LOCKED",
                    () -> UhfRfidNativeBase.QLUHFRFID_WriteTag(reader.handle, USER, 0, NONE, 4, bytes("0000"), 1));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_WriteTag(reader.handle, USER, 0, ACCESS, 4, bytes("1234"), 1));
            assertRefuses("QLERR_UHFRFID_KILL", () -> UhfRfidNativeBase.QLUHFRFID_KillTag(reader.handle, ACCESS, 4));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_KillTag(reader.handle, KILL, 4));
            assertRefuses("QLERR_UHFRFID_NOREPLY",
                    () -> UhfRfidNativeBase.QLUHFRFID_ReadTag(reader.handle, USER, 0, NONE, 4, new byte[2], 1));
        }
    }

    @Test
    void nativeMethodsKeepPowerAndQueryParameters() throws IOException {
        try (Opened reader = new Opened()) {
            int handle = reader.handle;
            assertEquals(27, UhfRfidNativeBase.QLUHFRFID_GetPower(handle));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SetPower(handle, 255));
            assertEquals(255, UhfRfidNativeBase.QLUHFRFID_GetPower(handle));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SetLinkFreqForQuery(handle, 640));
            assertEquals(640, UhfRfidNativeBase.QLUHFRFID_GetLinkFreqForQuery(handle));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SetMillerForQuery(handle, 3));
            assertEquals(3, UhfRfidNativeBase.QLUHFRFID_GetMillerForQuery(handle));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SetSessionForQuery(handle, 1));
            assertEquals(1, UhfRfidNativeBase.QLUHFRFID_GetSessionForQuery(handle));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SetQBeginForQuery(handle, 15));
            assertEquals(15, UhfRfidNativeBase.QLUHFRFID_GetQBeginForQuery(handle));
            assertEquals(0, UhfRfidNativeBase.QLUHFRFID_SetSensitivityForQuery(handle, -86));
            assertEquals(-86, UhfRfidNativeBase.QLUHFRFID_GetSensitivityForQuery(handle));

            String refused = "QLERR_INVALID_ARGUMENT";
            assertRaises(IllegalArgumentException.class, refused,
                    () -> UhfRfidNativeBase.QLUHFRFID_SetPower(handle, 256));
            assertRaises(IllegalArgumentException.class, "Invalid Argument",
                    () -> UhfRfidNativeBase.QLUHFRFID_SetLinkFreqForQuery(handle, 100));
            assertRaises(IllegalArgumentException.class, "Invalid Argument",
                    () -> UhfRfidNativeBase.QLUHFRFID_SetSensitivityForQuery(handle, -87));
        }
    }

    @Test
    void arraysThatAreTooShortAreRefusedAndNothingIsSent() throws IOException {
        try (Opened reader = new Opened()) {
            int handle = reader.handle;
            machine.command("rfid clear-log");
            byte[] two = {1, 2};
            int[] one = {64};
            int[] none = {};
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_GetFirstTag(handle, two, one, new int[1]));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_GetNextTag(handle, new byte[64], none, new int[1]));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_GetFirstTag(handle, new byte[64], one, none));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_SelectTag(handle, two, 14));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_ReadTag(handle, USER, 0, NONE, 4, two, 2));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_ReadTag(handle, USER, 0, two, 4, new byte[64], 2));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_WriteTag(handle, USER, 0, NONE, 4, two, 2));
            assertThrows(IllegalArgumentException.class,
                    () -> UhfRfidNativeBase.QLUHFRFID_LockTag(handle, 0, 0, two, 3));
            assertThrows(IllegalArgumentException.class, () -> UhfRfidNativeBase.QLUHFRFID_KillTag(handle, two, 4));
            assertThrows(IllegalArgumentException.class, () -> UhfRfidNativeBase.QLUHFRFID_KillTag(handle, null, 4));
            assertArrayEquals(new byte[] {1, 2}, two);
            assertEquals(64, one[0]);
            assertEquals("[]", machine.command("rfid log"));
        }
    }

    @Test
    void everyStatusOfTheReaderIsARfidException() throws IOException {
        try (Opened reader = new Opened()) {
            // The texts of the native interface: three of them end with a blank, and 01 and unknown ones have no name.
            String[][] texts = {{"07", "QLERR_UHFRFID_ERASE"}, {"08", "QLERR_UHFRFID_READ "},
                {"0A", "QLERR_UHFRFID_CHANNEL_TIMEOUT"}, {"80", "QLERR_UHFRFID_OTHER "},
                {"8B", "QLERR_UHFRFID_INSUFFICIENT_POWER"}, {"FF", "QLERR_UHFRFID_HW_FAILURE"}, {"01", "Unknown Error"},
                {"77", "Unknown Error"}};
            for (String[] text : texts) {
                machine.command("rfid status-byte " + text[0] + " get-power");
                RfidException thrown = assertThrows(RfidException.class,
                        () -> UhfRfidNativeBase.QLUHFRFID_GetPower(reader.handle));
                assertEquals(text[1], thrown.getMessage());
            }
            assertEquals(27, UhfRfidNativeBase.QLUHFRFID_GetPower(reader.handle));
        }
    }

    @Test
    @SuppressWarnings("try")
    void theGroupsClassIsGivenItsTextBeforeTheMessage() throws Exception {
        try (NativeGroups.Raw raw = NativeGroups.rawRfid(); Opened reader = new Opened()) {
            machine.command("rfid remove-tag " + LABEL);
            machine.command("rfid remove-tag " + CRATE);
            assertRaises(NativeGroups.RawException.class,
                    "Unexpected behaviour encountered,QLERR_UHFRFID_NO_TAGS", () -> UhfRfidNativeBase
                            .QLUHFRFID_GetFirstTag(reader.handle, new byte[64], new int[] {64}, new int[1]));
        }
    }

    @Test
    void aReaderThatIsNotThereIsAnException() throws IOException {
        machine.command("rfid unplug");
        assertRefuses("QLERR_UHFRFID_DEVICENOTFOUND", UhfRfidNativeBase::QLUHFRFID_OpenReader);
        assertEquals(ResultCode.UHFRFID_DEVICENOTFOUND,
                assertThrows(QuarlinException.class, RfidReader::open).code());
    }

    private static List<String> epcs(List<Tag> tags) {
        return tags.stream().map(Tag::epc).collect(Collectors.toList());
    }

    @Test
    void aReaderInventoriesTheField() {
        try (RfidReader reader = RfidReader.open()) {
            List<Tag> tags = reader.inventory();
            assertEquals(Arrays.asList(LABEL, CRATE), epcs(tags));
            assertEquals(-48, tags.get(0).signal());
            assertArrayEquals(bytes("3000" + CRATE), tags.get(1).identifier());
            machine.command("rfid add-tag 3034257BF7194E4000001A87 signal=-59");
            assertEquals(3, reader.inventory().size());
            for (String epc : epcs(reader.inventory())) {
                machine.command("rfid remove-tag " + epc);
            }
            assertTrue(reader.inventory().isEmpty());
            assertFalse(reader.firstTag().isPresent());
        }
    }

    @Test
    void aReaderReadsWritesLocksAndKills() {
        try (RfidReader reader = RfidReader.open()) {
            reader.select(reader.firstTag().get());
            assertArrayEquals(bytes("00010203"), reader.read(MemoryBank.USER, 0, 2, RfidReader.NO_PASSWORD));
            reader.write(MemoryBank.USER, 6, bytes("CAFEBABE"), ACCESS_PASSWORD);
            assertArrayEquals(bytes("0A0BCAFEBABE"), reader.read(MemoryBank.USER, 5, 3, ACCESS_PASSWORD));
            reader.lock(4, 2, ACCESS_PASSWORD);
            assertFails(ResultCode.UHFRFID_MEMORY_LOCKED, "QLERR_UHFRFID_MEMORY_LOCKED",
                    () -> reader.write(MemoryBank.USER, 0, bytes("0000"), RfidReader.NO_PASSWORD));
            reader.kill(KILL_PASSWORD);
            assertEquals(Arrays.asList(CRATE), epcs(reader.inventory()));
        }
    }

    @Test
    void aReaderKeepsItsSettings() {
        try (RfidReader reader = RfidReader.open()) {
            reader.setPower(20);
            assertEquals(20, reader.power());
            reader.setLinkFrequency(320);
            reader.setMiller(0);
            reader.setSession(3);
            reader.setFirstQ(7);
            reader.setSensitivity(-55);
            assertEquals(Arrays.asList(320, 0, 3, 7, -55), Arrays.asList(reader.linkFrequency(), reader.miller(),
                    reader.session(), reader.firstQ(), reader.sensitivity()));
        }
    }

    @Test
    void anUnpluggedReaderFailsUntilItIsOpenedAgain() {
        RfidReader reader = RfidReader.open();
        assertEquals(ResultCode.INVALID_STATE, assertThrows(QuarlinException.class, RfidReader::open).code());
        machine.command("rfid unplug during get-power");
        assertFails(ResultCode.UHFRFID_COMMAND_SEND, "QLERR_UHFRFID_COMMAND_SEND", reader::power);
        reader.close();
        assertEquals(ResultCode.INVALID_STATE, assertThrows(QuarlinException.class, reader::power).code());
        machine.command("rfid plug");
        try (RfidReader again = RfidReader.open()) {
            assertEquals(27, again.power());
        }
    }
}

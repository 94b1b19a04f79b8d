// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import java.nio.charset.StandardCharsets;
import java.time.Instant;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.CsvSource;

class ValuesTest {
    private static final Instant NOON = Instant.parse("2026-01-01T12:00:00Z");

    @Test
    void aScanKeepsNoArrayOfItsMakerAndGivesNoneAway() {
        byte[] bytes = {'1', '2'};
        byte[] identifier = {']', 'C', '1'};
        Scan scan = new Scan(0, "12", bytes, "]C1", identifier, NOON);
        bytes[0] = 'x';
        identifier[0] = 'x';
        scan.bytes()[1] = 'x';
        scan.symbologyIdentifierBytes()[1] = 'x';
        assertArrayEquals(new byte[] {'1', '2'}, scan.bytes());
        assertArrayEquals(new byte[] {']', 'C', '1'}, scan.symbologyIdentifierBytes());
    }

    @Test
    void aScanTellsWhatItWasMadeOf() {
        Scan scan = new Scan(3, "text", new byte[] {1}, "]E0", new byte[] {2}, NOON);
        assertEquals(3, scan.deviceIndex());
        assertEquals("text", scan.text());
        assertEquals("]E0", scan.symbologyIdentifier());
        assertSame(NOON, scan.arrival());
        assertEquals("]E0 text", scan.toString());
    }

    @Test
    void whatAScanIsNotToldItTakesFromTheBytes() {
        Instant before = Instant.now();
        Scan scan = new Scan(0, null, "\u00e9".getBytes(StandardCharsets.UTF_8), null, new byte[] {']', 'Q'}, null);
        assertEquals("\u00e9", scan.text());
        assertEquals("]Q", scan.symbologyIdentifier());
        assertTrue(!scan.arrival().isBefore(before) && !scan.arrival().isAfter(Instant.now()));
        Scan empty = new Scan(0, null, null, null, null, null);
        assertEquals("", empty.text());
        assertEquals("", empty.toString());
        assertEquals(0, empty.bytes().length);
        assertEquals(0, empty.symbologyIdentifierBytes().length);
    }

    @Test
    void aScansBytesCanBeReadInAnotherEncoding() {
        Scan scan = new Scan(0, "\ufffd", new byte[] {(byte) 0xe9}, "", new byte[0], NOON);
        assertEquals("\u00e9", scan.text(StandardCharsets.ISO_8859_1));
    }

    @Test
    void aDeviceIsMadeOfWhatTheLibraryHandsOut() {
        BarcodeDeviceInfo info = new BarcodeDeviceInfo();
        info.index = 1;
        info.deviceName = "Intermec EA30";
        info.iDeviceType = 1;
        BarcodeDevice device = BarcodeDevice.of(info);
        info.deviceName = "another";
        assertEquals(1, device.index());
        assertEquals("Intermec EA30", device.name());
        assertSame(BarcodeDeviceType.BUILT_IN, device.type());
        assertEquals("1: Intermec EA30 (BUILT_IN)", device.toString());
        assertEquals(new BarcodeDevice(1, "Intermec EA30", BarcodeDeviceType.BUILT_IN), device);
        assertEquals(new BarcodeDevice(1, "Intermec EA30", BarcodeDeviceType.BUILT_IN).hashCode(), device.hashCode());
        assertNotEquals(new BarcodeDevice(0, "Intermec EA30", BarcodeDeviceType.BUILT_IN), device);
        assertNotEquals(new BarcodeDevice(1, "Barcode Reader", BarcodeDeviceType.BUILT_IN), device);
        assertNotEquals(new BarcodeDevice(1, "Intermec EA30", BarcodeDeviceType.EXTERNAL), device);
    }

    @Test
    void aDeviceWithoutANameHasAnEmptyOne() {
        BarcodeDevice device = BarcodeDevice.of(new BarcodeDeviceInfo());
        assertEquals("", device.name());
        assertSame(BarcodeDeviceType.EXTERNAL, device.type());
    }

    @Test
    void eachKindOfRuleFillsItsOwnValues() {
        assertRule(EditRule.none(), EditMode.NONE, "", "", 0, 0);
        assertRule(EditRule.replace("a", "b"), EditMode.REPLACE, "a", "b", 0, 0);
        assertRule(EditRule.insert("-", -1), EditMode.INSERT, "", "-", -1, 0);
        assertRule(EditRule.delete("0", 1, -2), EditMode.DELETE, "0", "", 1, -2);
    }

    private static void assertRule(EditRule rule, EditMode mode, String target, String content, int start, int end) {
        assertSame(mode, rule.mode());
        assertEquals(target, rule.target());
        assertEquals(content, rule.content());
        assertEquals(start, rule.start());
        assertEquals(end, rule.end());
    }

    @Test
    void aRuleIsMadeOfWhatTheLibraryHandsOut() {
        EditModeData data = new EditModeData();
        data.iEditMode = 3;
        data.strTarget = "0";
        data.strCont = "";
        data.iStart = 1;
        data.iEnd = -2;
        assertEquals(EditRule.delete("0", 1, -2), EditRule.of(data));
        data.iEditMode = 77;
        data.strTarget = null;
        data.strCont = null;
        assertRule(EditRule.of(data), EditMode.NONE, "", "", 1, -2);
    }

    @Test
    void rulesAreEqualByTheirValues() {
        EditRule rule = EditRule.delete("0", 1, 2);
        assertEquals(EditRule.delete("0", 1, 2), rule);
        assertEquals(EditRule.delete("0", 1, 2).hashCode(), rule.hashCode());
        assertNotEquals(EditRule.delete("1", 1, 2), rule);
        assertNotEquals(EditRule.delete("0", 0, 2), rule);
        assertNotEquals(EditRule.delete("0", 1, 3), rule);
        assertNotEquals(EditRule.replace("0", ""), EditRule.delete("0", 0, 0));
        assertNotEquals(EditRule.replace("0", "1"), EditRule.replace("0", "2"));
        assertEquals("DELETE target \"0\" content \"\" start 1 end 2", rule.toString());
    }

    @Test
    void rulesAndFixedTextsNeedTheirTexts() {
        assertThrows(NullPointerException.class, () -> EditRule.replace(null, ""));
        assertThrows(NullPointerException.class, () -> EditRule.insert(null, 1));
        assertThrows(NullPointerException.class, () -> new FixedText(null, true));
    }

    @Test
    void fixedTextsAreEqualByTheirValues() {
        FixedText text = new FixedText("[", true);
        assertEquals("[", text.text());
        assertTrue(text.isOutermost());
        assertEquals("[", text.toString());
        assertEquals(new FixedText("[", true), text);
        assertEquals(new FixedText("[", true).hashCode(), text.hashCode());
        assertNotEquals(new FixedText("[", false), text);
        assertNotEquals(new FixedText("]", true), text);
    }

    @ParameterizedTest
    @CsvSource({"0, EXTERNAL", "1, BUILT_IN", "2, EXTERNAL"})
    void aTypeIsFoundByItsNumber(int value, BarcodeDeviceType type) {
        assertSame(type, BarcodeDeviceType.of(value));
    }
}

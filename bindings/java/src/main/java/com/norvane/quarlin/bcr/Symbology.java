// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.bcr;

/**
 * A kind of barcode, to be switched on or off with {@link BarcodeScanner#setSymbologyEnabled(Symbology, boolean)}.
 * An engine does not tell which ones are on.
 */
public enum Symbology {
    /** Codabar. */
    CODABAR(0, "Codabar"),
    /** Code11. */
    CODE_11(1, "Code11"),
    /** Code128. */
    CODE_128(2, "Code128"),
    /** ISBT. Intermec engines disable Code 128 and EAN 128 with it. */
    ISBT(3, "ISBT"),
    /** Code_128_FrenchCIP. */
    CODE_128_FRENCH_CIP(4, "Code_128_FrenchCIP"),
    /** Code39. */
    CODE_39(5, "Code39"),
    /** TLC39. */
    TLC_39(6, "TLC39"),
    /** Code93. */
    CODE_93(7, "Code93"),
    /** EAN_13. */
    EAN_13(8, "EAN_13"),
    /** EAN_128_Irregular. Intermec engines only. */
    EAN_128_IRREGULAR(9, "EAN_128_Irregular"),
    /** ISBN. */
    ISBN(10, "ISBN"),
    /** EAN_ISMN. */
    EAN_ISMN(11, "EAN_ISMN"),
    /** EAN_ISSN. */
    EAN_ISSN(12, "EAN_ISSN"),
    /** EAN_8. */
    EAN_8(13, "EAN_8"),
    /** EAN_128. */
    EAN_128(14, "EAN_128"),
    /** RSS_14. */
    RSS_14(15, "RSS_14"),
    /** RSS_Limited. */
    RSS_LIMITED(16, "RSS_Limited"),
    /** RSS_Expanded. */
    RSS_EXPANDED(17, "RSS_Expanded"),
    /** EAN.UCC Composite_AB. */
    EAN_UCC_COMPOSITE_AB(18, "EAN.UCC Composite_AB"),
    /** EAN.UCC Composite_C. */
    EAN_UCC_COMPOSITE_C(19, "EAN.UCC Composite_C"),
    /** EAN.UCC Composite_Lin. Honeywell engines disable it in every case. */
    EAN_UCC_COMPOSITE_LIN(20, "EAN.UCC Composite_Lin"),
    /** Interleaved2of5. */
    INTERLEAVED_2_OF_5(21, "Interleaved2of5"),
    /** Matrix. */
    MATRIX_2_OF_5(22, "Matrix"),
    /** Standard2of5. */
    STANDARD_2_OF_5(23, "Standard2of5"),
    /** MSI. */
    MSI(24, "MSI"),
    /** Plessey. */
    PLESSEY(25, "Plessey"),
    /** Telepen. */
    TELEPEN(26, "Telepen"),
    /** UPC_A. */
    UPC_A(27, "UPC_A"),
    /** UPC_E. */
    UPC_E(28, "UPC_E"),
    /** UPC_E1. */
    UPC_E1(29, "UPC_E1"),
    /** Aztec. */
    AZTEC(30, "Aztec"),
    /** CODABLOCK_A. */
    CODABLOCK_A(31, "CODABLOCK_A"),
    /** CODABLOCK_F. */
    CODABLOCK_F(32, "CODABLOCK_F"),
    /** DataMatrix. */
    DATA_MATRIX(33, "DataMatrix"),
    /** Maxicode. */
    MAXICODE(34, "Maxicode"),
    /** PDF417. */
    PDF_417(35, "PDF417"),
    /** MicroPDF 417. */
    MICRO_PDF_417(36, "MicroPDF 417"),
    /** QR. */
    QR(37, "QR"),
    /** AustralianPost. Honeywell engines disable all postal codes together. */
    AUSTRALIAN_POST(38, "AustralianPost"),
    /** BPOCode. Honeywell engines disable all postal codes together. */
    BPO_CODE(39, "BPOCode"),
    /** CanadaPost. Honeywell engines disable all postal codes together. */
    CANADA_POST(40, "CanadaPost"),
    /** Infomail. Honeywell engines disable all postal codes together. */
    INFOMAIL(41, "Infomail"),
    /** JapanPost. Honeywell engines disable all postal codes together. */
    JAPAN_POST(42, "JapanPost"),
    /** DutchPost. Honeywell engines disable all postal codes together. */
    DUTCH_POST(43, "DutchPost"),
    /** Planet. Honeywell engines disable all postal codes together. */
    PLANET(44, "Planet"),
    /** Postnet. Honeywell engines disable all postal codes together. */
    POSTNET(45, "Postnet"),
    /** SwedenPost. Honeywell engines disable all postal codes together. */
    SWEDEN_POST(46, "SwedenPost");

    private final int value;
    private final String nativeName;

    Symbology(int value, String nativeName) {
        this.value = value;
        this.nativeName = nativeName;
    }

    /**
     * The symbology's number in the C interface.
     *
     * @return 0 to 46
     */
    public int value() {
        return value;
    }

    /**
     * The symbology's name in the C interface.
     *
     * @return such as {@code "Code128"}; never null
     */
    public String nativeName() {
        return nativeName;
    }
}

// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin;

/**
 * Why a call failed. Codes decide, messages explain: branch on the code, show the message to a person.
 *
 * <p>The first seven are used by every family, the {@code UHFRFID_} codes by the UHF RFID reader alone. They are those
 * of the library's C interface, where each name has {@code QLERR_} before it.
 */
public enum ResultCode {
    /** The call did what it says. */
    OK(0),
    /** A value was passed that the function refuses. */
    INVALID_ARGUMENT(1),
    /** The call came at the wrong time: not opened, not enabled, already closed, or the port is taken. */
    INVALID_STATE(2),
    /** The device answered wrongly or not at all. */
    IO_ERROR(3),
    /** This machine or this device cannot do it. */
    OP_UNSUPPORTED(4),
    /** The operating system or a library underneath failed; the message says which step and why. */
    INTERNAL_ERROR(5),
    /** A text or a list is longer than the room for it. */
    BUFFER_OVERFLOW(6),
    /** RFID reader: the request is not allowed. The native library has no text for it: see {@link #UNSPECIFIED}. */
    UHFRFID_REQ_NOT_ALLOWED(0x10001),
    /** RFID reader: access to the tag failed. */
    UHFRFID_ACCESS(0x10002),
    /** RFID reader: killing the tag failed. */
    UHFRFID_KILL(0x10003),
    /** RFID reader: the tag does not reply. */
    UHFRFID_NOREPLY(0x10004),
    /** RFID reader: locking failed. */
    UHFRFID_LOCK(0x10005),
    /** RFID reader: writing failed. */
    UHFRFID_WRITE(0x10006),
    /** RFID reader: erasing failed. */
    UHFRFID_ERASE(0x10007),
    /** RFID reader: reading failed. */
    UHFRFID_READ(0x10008),
    /** RFID reader: selecting the tag failed. */
    UHFRFID_SELECT(0x10009),
    /** RFID reader: no free radio channel in time. */
    UHFRFID_CHANNEL_TIMEOUT(0x1000A),
    /** RFID reader: a parameter is refused. */
    UHFRFID_INVALID_PARAMETER2(0x1000F),
    /** RFID reader: EAS code. */
    UHFRFID_EASCODE(0x10020),
    /** RFID tag: another error. */
    UHFRFID_OTHER(0x10080),
    /** RFID tag: there is no such memory. */
    UHFRFID_MEMORY_OVERRUN(0x10083),
    /** RFID tag: the memory is locked. */
    UHFRFID_MEMORY_LOCKED(0x10084),
    /** RFID tag: it has too little power to write. */
    UHFRFID_INSUFFICIENT_POWER(0x1008B),
    /** RFID tag: it does not tell errors apart. */
    UHFRFID_NONSPECIFIC(0x1008F),
    /** RFID reader: the address can only be read. */
    UHFRFID_READONLY_ADDRESS(0x100A0),
    /** RFID reader: its radio is switched off. */
    UHFRFID_PCIE_RADIO_DISABLED(0x100B0),
    /** RFID reader: security failure. */
    UHFRFID_SECURITY_FAILURE(0x100FE),
    /** RFID reader: hardware failure. */
    UHFRFID_HW_FAILURE(0x100FF),
    /** Way to the RFID reader: the reader is not open. */
    UHFRFID_INVALID_HANDLE(0x10102),
    /** RFID reader: there is no tag, or no further one. */
    UHFRFID_NO_TAGS(0x10104),
    /** Way to the RFID reader: the command could not be sent. */
    UHFRFID_COMMAND_SEND(0x10105),
    /** Way to the RFID reader: the answer could not be received. */
    UHFRFID_COMMAND_RECEIVE(0x10106),
    /** Way to the RFID reader: the room for an answer is too small. */
    UHFRFID_BUFFERTOOSMALL(0x10107),
    /** Way to the RFID reader: a command is too long. */
    UHFRFID_BUFFERTOOBIG(0x10108),
    /** Way to the RFID reader: the operating system failed. */
    UHFRFID_SYSTEM(0x1010A),
    /** Way to the RFID reader: there is no reader. */
    UHFRFID_DEVICENOTFOUND(0x1010B),
    /** Way to the RFID reader: another failure. */
    UHFRFID_UNCLASSIFIED(0x1010C),
    /** A failure of which the native library hands over the message alone. Its value is no code of the C interface. */
    UNSPECIFIED(-1);

    private final int value;

    ResultCode(int value) {
        this.value = value;
    }

    /**
     * The code's number in the C interface.
     *
     * @return 0 and above; -1 for {@link #UNSPECIFIED}
     */
    public int value() {
        return value;
    }

    /**
     * The code's name in the C interface.
     *
     * @return such as {@code "QLERR_IO_ERROR"}; never null
     */
    public String nativeName() {
        return "QLERR_" + name();
    }

    /**
     * Finds a code by its number.
     *
     * @param value the number in the C interface
     * @return the code; {@link #UNSPECIFIED} when no code has this number
     */
    public static ResultCode of(int value) {
        for (ResultCode code : values()) {
            if (code.value == value) {
                return code;
            }
        }
        return UNSPECIFIED;
    }
}

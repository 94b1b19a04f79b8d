// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.uhfrfid.MemoryBank;
import com.norvane.quarlin.uhfrfid.RfidException;
import com.norvane.quarlin.uhfrfid.RfidReader;
import com.norvane.quarlin.uhfrfid.Tag;
import java.util.List;

/** Makes an inventory round and reads the beginning of each tag's TID. */
public final class UhfInventory {
    private static final int TID_WORDS = 2;

    private UhfInventory() {
    }

    /**
     * Exit status: 0 after a round, 1 after an error, 3 without a reader.
     *
     * @param arguments none
     */
    public static void main(String[] arguments) {
        System.exit(round());
    }

    private static int round() {
        try (RfidReader reader = RfidReader.open()) {
            List<Tag> tags = reader.inventory();
            System.out.println(tags.size() + " tags at power " + reader.power());
            for (Tag tag : tags) {
                System.out.println(tag.epc() + ", signal " + tag.signal() + ", TID " + tid(reader, tag));
            }
            return 0;
        } catch (QuarlinException failure) {
            System.err.println(failure.code() + ": " + failure.getMessage());
            return failure.code() == ResultCode.UHFRFID_DEVICENOTFOUND ? 3 : 1;
        }
    }

    /** A tag may have gone since it was seen, or have no TID: that is no reason to stop. */
    private static String tid(RfidReader reader, Tag tag) {
        try {
            reader.select(tag);
            StringBuilder text = new StringBuilder();
            for (byte each : reader.read(MemoryBank.TID, 0, TID_WORDS, RfidReader.NO_PASSWORD)) {
                text.append(String.format("%02X", each));
            }
            return text.toString();
        } catch (RfidException failure) {
            return "not read: " + failure.code();
        }
    }
}

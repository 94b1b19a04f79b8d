// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.bcr.BarcodeScanner;
import com.norvane.quarlin.bcr.Scan;
import java.util.concurrent.BlockingQueue;
import java.util.concurrent.LinkedBlockingQueue;
import java.util.concurrent.TimeUnit;

/** Reads barcodes and prints each with its symbology identifier. */
public final class BarcodeScan {
    private static final int PATIENCE_SECONDS = 60;

    private BarcodeScan() {
    }

    /**
     * Usage: {@code BarcodeScan [COUNT]}, COUNT codes, or 1. Exit status: 0 when that many came, 1 after an error, 3
     * without a scanner or a code.
     *
     * @param arguments see above
     * @throws InterruptedException never
     */
    public static void main(String[] arguments) throws InterruptedException {
        int count = arguments.length == 0 ? 1 : Integer.parseInt(arguments[0]);
        System.exit(read(count));
    }

    private static int read(int count) throws InterruptedException {
        try (BarcodeScanner scanner = BarcodeScanner.open()) {
            // The listener runs on a thread of the library. Here it hands the scans over to this one.
            BlockingQueue<Scan> scans = new LinkedBlockingQueue<>();
            scanner.addScanListener(scans::add);
            scanner.enable();
            System.out.println(scanner.deviceName() + ": pull the trigger and hold a code before the scanner.");
            for (int i = 0; i < count; i++) {
                Scan scan = scans.poll(PATIENCE_SECONDS, TimeUnit.SECONDS);
                if (scan == null) {
                    System.err.println("No code came.");
                    return 3;
                }
                System.out.println("Code: " + printable(scan.text()) + ", symbology " + scan.symbologyIdentifier()
                        + ", " + scan.bytes().length + " bytes");
            }
            return 0;
        } catch (QuarlinException failure) {
            System.err.println(failure.code() + ": " + failure.getMessage());
            return failure.code() == ResultCode.OP_UNSUPPORTED ? 3 : 1;
        }
    }

    /** Whatever a code holds: nothing that a terminal would obey. */
    private static String printable(String text) {
        return text.replaceAll("\\p{Cntrl}", ".");
    }
}

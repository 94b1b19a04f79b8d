// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.bcr.BarcodeException;
import com.norvane.quarlin.gps.GPS;
import java.io.IOException;
import java.util.Arrays;
import java.util.Locale;

/**
 * What a getter's way out of Java costs beside an empty native method, and a scan's way into Java beside an attached
 * thread's call that brings nothing along. Prints JSON.
 *
 * <p>Usage: JavaBench DLL [PORT]. DLL is java_bench.dll; PORT is the number of a serial port of this machine (3), which
 * is not opened.
 */
public final class JavaBench {
    private static final int WARM_UP_ROUNDS = 100;
    private static final int CALL_ROUNDS = 401;
    private static final int CALLS_PER_ROUND = 20_000;
    private static final int DELIVERY_ROUNDS = 401;
    private static final int DELIVERIES_PER_ROUND = 20;

    private static long bareCalls;
    private static long scans;
    private static long sink;

    private JavaBench() {
    }

    private static native boolean empty();

    private static native boolean register(Class<?> exceptionClass);

    private static native void deliver(int callsPerRound, double[] bare, double[] scan);

    /** Called from native threads. */
    static void bare() {
        bareCalls++;
    }

    /** Called from native threads. */
    static void nativeBarcodeEvent(int device, String text, int length, byte[] bytes, String symbology,
            int symbologyLength, byte[] symbologyBytes) {
        if (length == bytes.length && length == text.length() && symbologyLength == symbologyBytes.length) {
            scans++;
        }
    }

    private static double emptySeconds() {
        long start = System.nanoTime();
        int sum = 0;
        for (int i = 0; i < CALLS_PER_ROUND; i++) {
            sum += empty() ? 1 : 0;
        }
        double seconds = (System.nanoTime() - start) / 1e9;
        sink += sum;
        return seconds;
    }

    private static double getterSeconds() throws IOException {
        long start = System.nanoTime();
        int sum = 0;
        for (int i = 0; i < CALLS_PER_ROUND; i++) {
            sum += GPS.QLGPS_IsEnabled() ? 1 : 0;
        }
        double seconds = (System.nanoTime() - start) / 1e9;
        sink += sum;
        return seconds;
    }

    private static double median(double[] values) {
        double[] sorted = values.clone();
        Arrays.sort(sorted);
        return sorted[sorted.length / 2];
    }

    private static double[] ratios(double[] above, double[] below) {
        double[] ratios = new double[above.length];
        for (int i = 0; i < ratios.length; i++) {
            ratios[i] = above[i] / below[i];
        }
        return ratios;
    }

    private static String calls(int port) throws IOException {
        GPS.QLGPS_Initialize(port);
        double[] empty = new double[CALL_ROUNDS];
        double[] getter = new double[CALL_ROUNDS];
        for (int i = -WARM_UP_ROUNDS; i < CALL_ROUNDS; i++) {
            double ofEmpty = emptySeconds();
            double ofGetter = getterSeconds();
            if (i >= 0) {
                empty[i] = ofEmpty;
                getter[i] = ofGetter;
            }
        }
        GPS.QLGPS_Uninitialize();
        return String.format(Locale.ROOT,
                "\"empty_call_ns\": %.2f, \"getter_ns\": %.2f, \"multiple_of_empty_call\": %.3f",
                median(empty) / CALLS_PER_ROUND * 1e9, median(getter) / CALLS_PER_ROUND * 1e9,
                median(ratios(getter, empty)));
    }

    private static String deliveries() {
        deliver(DELIVERIES_PER_ROUND, new double[WARM_UP_ROUNDS], new double[WARM_UP_ROUNDS]);
        double[] bare = new double[DELIVERY_ROUNDS];
        double[] scan = new double[DELIVERY_ROUNDS];
        bareCalls = 0;
        scans = 0;
        deliver(DELIVERIES_PER_ROUND, bare, scan);
        if (bareCalls != DELIVERY_ROUNDS * DELIVERIES_PER_ROUND) {
            throw new IllegalStateException(bareCalls + " bare calls");
        }
        return String.format(Locale.ROOT,
                "\"deliveries\": %d, \"scans\": %d, \"bare_call_us\": %.2f, \"scan_us\": %.2f, "
                        + "\"multiple_of_bare_call\": %.3f",
                DELIVERY_ROUNDS * DELIVERIES_PER_ROUND, scans, median(bare) / DELIVERIES_PER_ROUND * 1e6,
                median(scan) / DELIVERIES_PER_ROUND * 1e6, median(ratios(scan, bare)));
    }

    /**
     * Measures and prints.
     *
     * @param arguments see above
     * @throws IOException never; GPS methods declare it
     */
    public static void main(String[] arguments) throws IOException {
        System.load(arguments[0]);
        if (!register(BarcodeException.class)) {
            throw new IllegalStateException("no callback");
        }
        String calls = calls(arguments.length > 1 ? Integer.parseInt(arguments[1]) : 3);
        System.out.println("{\"java\": \"" + System.getProperty("java.version") + "\", " + calls + ", " + deliveries()
                + "}");
    }
}

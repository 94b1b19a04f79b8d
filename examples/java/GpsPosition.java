// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.gps.FixQuality;
import com.norvane.quarlin.gps.GpsReceiver;
import java.time.Instant;
import java.util.Locale;
import java.util.Optional;
import java.util.concurrent.TimeUnit;

/** Waits for a fix and prints positions, one a second. */
public final class GpsPosition {
    private static final int PATIENCE_SECONDS = 120;

    private GpsPosition() {
    }

    /**
     * Usage: {@code GpsPosition PORT [COUNT]}, 3 for COM3, COUNT positions, or 1. Exit status: 0 after them, 1 after an
     * error, 2 without a port, 3 without a fix.
     *
     * @param arguments see above
     * @throws InterruptedException never
     */
    public static void main(String[] arguments) throws InterruptedException {
        if (arguments.length == 0) {
            System.err.println("usage: GpsPosition PORT [COUNT]");
            System.exit(2);
        }
        int port = Integer.parseInt(arguments[0]);
        int count = arguments.length < 2 ? 1 : Integer.parseInt(arguments[1]);
        System.exit(follow(port, count));
    }

    private static int follow(int port, int count) throws InterruptedException {
        try (GpsReceiver receiver = GpsReceiver.open(port)) {
            receiver.enable();
            System.out.println("Waiting for a fix on COM" + port + ".");
            int shown = 0;
            for (int seconds = 0; shown < count; seconds++) {
                if (seconds > PATIENCE_SECONDS + count) {
                    System.err.println("There is no fix.");
                    return 3;
                }
                // Nothing is called back: the application asks as often as it wants to know.
                TimeUnit.SECONDS.sleep(1);
                Optional<Instant> time = receiver.time();
                if (receiver.fixQuality() != FixQuality.NONE && time.isPresent()) {
                    show(receiver, time.get());
                    shown++;
                }
            }
            return 0;
        } catch (QuarlinException failure) {
            System.err.println(failure.code() + ": " + failure.getMessage());
            return 1;
        }
    }

    private static void show(GpsReceiver receiver, Instant time) {
        System.out.println(time + "  " + receiver.position() + String.format(Locale.ROOT,
                "  %.1f knots to %.0f degrees, %d of %d satellites", receiver.speed(), receiver.bearing(),
                receiver.satellitesUsed(), receiver.satellitesInView()));
    }
}

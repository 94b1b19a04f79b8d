// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.gps.GPS;
import com.norvane.quarlin.gps.GpsReceiver;
import java.io.IOException;

/** What failures look like: one class with a code above, Java's own classes below. */
public final class ErrorHandling {
    private static final int NO_PORT = 300;

    private ErrorHandling() {
    }

    /**
     * Exit status: 0.
     *
     * @param arguments none
     * @throws IOException never
     */
    public static void main(String[] arguments) throws IOException {
        // The device classes throw one class. Its code decides, its message is for a person.
        try (GpsReceiver receiver = GpsReceiver.open(NO_PORT)) {
            receiver.enable();
        } catch (QuarlinException failure) {
            System.out.println(failure.code() + " (" + failure.code().value() + "): " + failure.getMessage());
            System.out.println("  thrown underneath: " + failure.getCause().getClass().getName());
            if (failure.code() == ResultCode.INVALID_ARGUMENT) {
                System.out.println("  There is no such port: choose another one.");
            }
        }

        // The native methods, one for each function of the C interface, throw Java's own classes.
        try {
            GPS.QLGPS_GetSpeed();
        } catch (IllegalStateException early) {
            System.out.println(early.getClass().getSimpleName() + ": " + early.getMessage());
        }

        // A mistake of the program itself is what it always is in Java.
        try {
            System.out.println(GPS.QLGPS_GetCoordinates(null));
        } catch (IllegalArgumentException mistake) {
            System.out.println(mistake.getClass().getSimpleName() + ": " + mistake.getMessage());
        }
    }
}

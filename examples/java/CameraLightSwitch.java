// SPDX-License-Identifier: Apache-2.0

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.camera.Light;

/** Switches the camera light on and off, and then on for a time. */
public final class CameraLightSwitch {
    private CameraLightSwitch() {
    }

    /**
     * Usage: {@code CameraLightSwitch [SECONDS]}, for which the light burns on when this has ended; 3 when not given.
     * Exit status: 0, 1 after an error, 3 on a computer without a camera light.
     *
     * @param arguments see above
     */
    public static void main(String[] arguments) {
        System.exit(use(arguments.length == 0 ? 3 : Integer.parseInt(arguments[0])));
    }

    private static int use(int seconds) {
        try (Light light = Light.open()) {
            light.switchOn();
            System.out.println("Switched on:  " + state(light));
            light.switchOff();
            System.out.println("Switched off: " + state(light));
            light.switchOnFor(seconds);
            System.out.println("For " + seconds + " s:      " + state(light));
            // It counts down by itself: closing leaves it as it is.
            return 0;
        } catch (QuarlinException failure) {
            System.err.println(failure.code() + ": " + failure.getMessage());
            return failure.code() == ResultCode.OP_UNSUPPORTED ? 3 : 1;
        }
    }

    private static String state(Light light) {
        return light.isOn() ? "it is on" : "it is off";
    }
}

// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.camera;

import com.norvane.quarlin.internal.NativeLoader;
import java.io.IOException;

/**
 * The native methods of the camera light, one for each function of the library's C interface. {@link Light} is made of
 * them and is what an application wants.
 *
 * <p>A method that returns an {@code int} without further meaning returns 0 when it has done what its name says. A
 * failure is thrown: {@link IllegalArgumentException}, {@link IllegalStateException}, {@link IOException},
 * {@link UnsupportedOperationException}, {@link java.nio.BufferOverflowException} (its message is that of its cause),
 * or {@link RuntimeException} for all others.
 *
 * <p>Whether the light obeyed is not reported: ask afterwards.
 *
 * <p>No method takes a lock: call them on one thread, or one at a time.
 */
public final class CameraLight {
    static {
        NativeLoader.load();
    }

    private CameraLight() {
    }

    /**
     * Loads and starts the light's library and switches the light off. While the family is initialised, does all of it
     * again.
     *
     * @return 0
     * @throws UnsupportedOperationException when the computer has no camera light, or not the maker's library for it;
     *                                       the family is then not initialised
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLCAM_Initialize() throws IOException;

    /**
     * Ends the use of the light, which stays as it is.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLCAM_Uninitialize() throws IOException;

    /**
     * Switches the light on until it is switched off.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLCAM_SetCameraLightOn() throws IOException;

    /**
     * Switches the light off, also while a time is running.
     *
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLCAM_SetCameraLightOff() throws IOException;

    /**
     * Switches the light on for a time, after which it goes off by itself.
     *
     * @param seconds the time; more than 254 count as 254, less than 1 do nothing and succeed
     * @return 0
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLCAM_TurnCameraLightOnForTime(int seconds) throws IOException;

    /**
     * Asks whether the light is on.
     *
     * @return whether its timer reads anything but 0; false when the light's library cannot tell
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native boolean QLCAM_IsCameraLightOn() throws IOException;

    /**
     * Asks what the light's timer reads. Whether that is the seconds left or a mere on and off is the affair of the
     * light's library.
     *
     * @return 0 to 254; 255 when the light's library gives none
     * @throws IOException for result code 3, which no function of this family gives
     */
    public static native int QLCAM_GetCameraLightTime() throws IOException;
}

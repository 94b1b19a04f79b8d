// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.camera;

import com.norvane.quarlin.QuarlinException;
import com.norvane.quarlin.internal.Family;
import com.norvane.quarlin.internal.NativeLoader;
import com.norvane.quarlin.internal.Session;

/**
 * The light beside the camera.
 *
 * <pre>{@code
 * try (Light light = Light.open()) {
 *     light.switchOnFor(3);
 * }
 * }</pre>
 *
 * <p>The light belongs to the machine and not to the program: another program may switch it at any time, and it stays
 * as it is when it is closed here. Whether it obeyed is not reported: ask {@link #isOn()} afterwards.
 *
 * <p>May be used on any thread; calls take turns. Every method but {@link #close()} throws {@link QuarlinException}
 * with result code 2 (invalid state) when the light is closed.
 */
public final class Light implements AutoCloseable {
    private static final Family FAMILY = Family.single("camera light");

    private final Session session;

    private Light(Session session) {
        this.session = session;
    }

    /**
     * Starts the light's library and switches the light off.
     *
     * @return the light; to be closed
     * @throws QuarlinException 2 when it is open in this process already; 4 when this computer has no camera light, or
     *                          not the maker's library for it
     * @throws UnsatisfiedLinkError when the native library cannot be loaded; the message says where it was looked for
     */
    public static Light open() {
        NativeLoader.load();
        return new Light(FAMILY.open(CameraLight::QLCAM_Initialize));
    }

    /**
     * Switches the light on until it is switched off.
     *
     * @throws QuarlinException 2 when closed
     */
    public void switchOn() {
        session.change(CameraLight::QLCAM_SetCameraLightOn);
    }

    /**
     * Switches the light off, also while a time is running.
     *
     * @throws QuarlinException 2 when closed
     */
    public void switchOff() {
        session.change(CameraLight::QLCAM_SetCameraLightOff);
    }

    /**
     * Switches the light on for a time, after which it goes off by itself.
     *
     * @param seconds the time; more than 254 count as 254, less than 1 do nothing
     * @throws QuarlinException 2 when closed
     */
    public void switchOnFor(int seconds) {
        session.change(() -> CameraLight.QLCAM_TurnCameraLightOnForTime(seconds));
    }

    /**
     * Asks whether the light is on.
     *
     * @return whether its timer reads anything but 0; false when the light's library cannot tell
     * @throws QuarlinException 2 when closed
     */
    public boolean isOn() {
        return session.change(CameraLight::QLCAM_IsCameraLightOn);
    }

    /**
     * Asks what the light's timer reads. Whether that is the seconds left or a mere on and off is the affair of the
     * light's library: compare it with 0, show the rest.
     *
     * @return 0 to 254; 255 when the light's library gives none
     * @throws QuarlinException 2 when closed
     */
    public int time() {
        return session.change(CameraLight::QLCAM_GetCameraLightTime);
    }

    /**
     * Ends the use of the light, which stays as it is. Does nothing when closed already.
     *
     * @throws QuarlinException when the library reports a failure; the light is closed all the same
     */
    @Override
    public void close() {
        session.close(CameraLight::QLCAM_Uninitialize);
    }
}

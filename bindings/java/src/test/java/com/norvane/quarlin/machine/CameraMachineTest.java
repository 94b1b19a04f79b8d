// SPDX-License-Identifier: Apache-2.0
package com.norvane.quarlin.machine;

import static com.norvane.quarlin.machine.Failures.assertFails;
import static com.norvane.quarlin.machine.Failures.assertRaises;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.norvane.quarlin.ResultCode;
import com.norvane.quarlin.camera.CameraLight;
import com.norvane.quarlin.camera.Light;
import java.io.IOException;
import org.junit.jupiter.api.AfterAll;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Tag;
import org.junit.jupiter.api.Test;

/** The camera light. */
@Tag("machine")
class CameraMachineTest {
    private static final String NOT_INITIALIZED = "Camera light API has not been initialized.";
    private static final String UNSUPPORTED = "Camera light API is unsupported .";

    private static Machine machine;

    @BeforeAll
    static void play() throws IOException {
        machine = new Machine();
        machine.play(
                "[[device]]",
                "kind = \"camera-light\"",
                "name = \"light\"");
    }

    @AfterAll
    static void end() throws IOException {
        machine.close();
    }

    @AfterEach
    void reset() {
        machine.command("light reset");
    }

    private static long timer() {
        return machine.number("light", "timer");
    }

    @Test
    void nativeMethodsSwitchTheLight() throws IOException {
        machine.command("light on");
        assertEquals(0, CameraLight.QLCAM_Initialize());
        assertEquals(0, timer());
        try {
            assertFalse(CameraLight.QLCAM_IsCameraLightOn());
            assertEquals(0, CameraLight.QLCAM_GetCameraLightTime());
            assertEquals(0, CameraLight.QLCAM_SetCameraLightOn());
            assertEquals(255, timer());
            assertTrue(CameraLight.QLCAM_IsCameraLightOn());
            // A byte without sign.
            assertEquals(255, CameraLight.QLCAM_GetCameraLightTime());
            assertEquals(0, CameraLight.QLCAM_SetCameraLightOff());
            assertEquals(0, timer());
            assertEquals(0, CameraLight.QLCAM_TurnCameraLightOnForTime(200));
            int left = CameraLight.QLCAM_GetCameraLightTime();
            assertTrue(left >= 150 && left <= 200, "left: " + left);
        } finally {
            assertEquals(0, CameraLight.QLCAM_Uninitialize());
        }
    }

    @Test
    void withoutInitialisationEveryNativeMethodIsRefused() {
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, CameraLight::QLCAM_Uninitialize);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, CameraLight::QLCAM_SetCameraLightOn);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, CameraLight::QLCAM_SetCameraLightOff);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, () -> CameraLight.QLCAM_TurnCameraLightOnForTime(1));
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, CameraLight::QLCAM_IsCameraLightOn);
        assertRaises(IllegalStateException.class, NOT_INITIALIZED, CameraLight::QLCAM_GetCameraLightTime);
    }

    @Test
    void aLightThatDoesNotStartIsUnsupported() {
        machine.command("light answer CameraLight_TurnOff 1");
        assertRaises(UnsupportedOperationException.class, UNSUPPORTED, CameraLight::QLCAM_Initialize);
        assertFails(ResultCode.OP_UNSUPPORTED, UNSUPPORTED, Light::open);
    }

    @Test
    void aLightBurnsWhileItIsToldTo() {
        try (Light light = Light.open()) {
            assertFalse(light.isOn());
            light.switchOn();
            assertTrue(light.isOn());
            assertEquals(255, light.time());
            light.switchOff();
            assertFalse(light.isOn());
            light.switchOnFor(250);
            assertTrue(light.time() > 200);
            machine.command("light off");
            assertFalse(light.isOn());
        }
    }

    @Test
    void aLightCanBeOpenedAgain() {
        for (int i = 0; i < 3; ++i) {
            try (Light light = Light.open()) {
                light.switchOn();
                assertTrue(light.isOn());
            }
        }
    }
}

// SPDX-License-Identifier: Apache-2.0

/**
 * The light of the camera: {@link com.norvane.quarlin.camera.Light}.
 */
package com.norvane.quarlin.camera;

// SPDX-License-Identifier: Apache-2.0

/**
 * The light of the camera.
 */
package com.norvane.quarlin.camera;

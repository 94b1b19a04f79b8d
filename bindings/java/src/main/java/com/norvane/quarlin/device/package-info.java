// SPDX-License-Identifier: Apache-2.0

/**
 * Built-in devices and batteries: {@link com.norvane.quarlin.device.DeviceInventory}.
 */
package com.norvane.quarlin.device;

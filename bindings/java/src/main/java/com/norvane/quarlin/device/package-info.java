// SPDX-License-Identifier: Apache-2.0

/**
 * Built-in devices and batteries.
 */
package com.norvane.quarlin.device;

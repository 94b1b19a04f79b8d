// SPDX-License-Identifier: Apache-2.0

/**
 * The GPS receiver: {@link com.norvane.quarlin.gps.GpsReceiver}.
 */
package com.norvane.quarlin.gps;

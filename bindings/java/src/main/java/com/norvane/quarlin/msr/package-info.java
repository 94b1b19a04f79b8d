// SPDX-License-Identifier: Apache-2.0

/**
 * Magnetic stripe readers: {@link com.norvane.quarlin.msr.CardReader}.
 */
package com.norvane.quarlin.msr;

// SPDX-License-Identifier: Apache-2.0

/**
 * The barcode scanner: {@link com.norvane.quarlin.bcr.BarcodeScanner}.
 */
package com.norvane.quarlin.bcr;

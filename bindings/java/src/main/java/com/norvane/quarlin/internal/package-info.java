// SPDX-License-Identifier: Apache-2.0

/**
 * What the families have in common underneath. Not for applications: it changes without notice.
 */
package com.norvane.quarlin.internal;
